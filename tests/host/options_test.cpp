#include "host/options.h"

#include <gtest/gtest.h>

namespace korvel::host {
namespace {

const ViewerLanguage english;

ParsedOptions parsed(const QStringList& arguments) {
  return parseOptions(arguments, english);
}

TEST(Options, NothingGivenIsNothingAskedFor) {
  const ParsedOptions none = parsed({});
  EXPECT_EQ(none.failure, "");
  EXPECT_FALSE(none.options.server || none.options.databaseType || none.options.formFile || none.options.shotFile ||
               none.options.size);
}

TEST(Options, BothWaysOfGivingAValueAreTheSame) {
  for (const QStringList& arguments :
       {QStringList{"--server", "A=B", "--type", "mu", "--form", "f.json", "--shot", "s.png", "--size", "640x480"},
        QStringList{"--server=A=B", "--type=mu", "--form=f.json", "--shot=s.png", "--size=640x480"}}) {
    const ParsedOptions all = parsed(arguments);
    EXPECT_EQ(all.failure, "");
    EXPECT_EQ(all.options.server, "A=B");
    EXPECT_EQ(all.options.databaseType, 1);
    EXPECT_EQ(all.options.formFile, "f.json");
    EXPECT_EQ(all.options.shotFile, "s.png");
    EXPECT_EQ(all.options.size, QSize(640, 480));
  }
}

TEST(Options, OneQueryFileMayStandAnywhere) {
  EXPECT_EQ(parsed({"a.vqf", "--type", "mu"}).options.queryFile, "a.vqf");
  const ParsedOptions last = parsed({"--server=A", "/home/x/My query.VQF"});
  EXPECT_EQ(last.failure, "");
  EXPECT_EQ(last.options.queryFile, "/home/x/My query.VQF");
  EXPECT_EQ(last.options.server, "A");
  // The value of an option is no file.
  EXPECT_FALSE(parsed({"--server", "a.vqf"}).options.queryFile);
}

TEST(Options, TypesAndEmptyServer) {
  EXPECT_EQ(parsed({"--type", "audit"}).options.databaseType, 0);
  EXPECT_EQ(parsed({"--server="}).options.server, "");
}

TEST(Options, WhatIsNotUnderstoodIsNamed) {
  for (const QStringList& arguments :
       {QStringList{"--what"}, QStringList{"file"}, QStringList{"a.txt"}, QStringList{"a.vqf", "b.vqf"},
        QStringList{""}, QStringList{"--type", "MU"}, QStringList{"--size", "10"}, QStringList{"--size", "0x10"},
        QStringList{"--size", "99999x10"}, QStringList{"--size", "640x480x2"}, QStringList{"--shot", ""},
        QStringList{"--form="}, QStringList{"--server"}, QStringList{"--help=now"}}) {
    const QString failure = parsed(arguments).failure;
    EXPECT_TRUE(failure.startsWith("The command line is not understood: ")) << failure.toStdString();
    EXPECT_TRUE(failure.contains(arguments.last().section('=', 0, 0))) << failure.toStdString();
  }
}

TEST(Options, HelpNamesEveryOptionInEveryLanguage) {
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    const QString help = helpText(ViewerLanguage(offset));
    for (const char* option : {"\n  FILE.vqf ", "--server NAME", "--type audit|mu", "--form FILE", "--shot FILE.png",
                               "--size WxH", "--help", "--version"})
      EXPECT_TRUE(help.contains(option)) << offset << ' ' << option;
  }
}

}  // namespace
}  // namespace korvel::host
