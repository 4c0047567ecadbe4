// What the help says of limits.
#include <gtest/gtest.h>

#include <QFile>
#include <QString>

#include "results/column_values.h"
#include "results/patterns/regex_matcher.h"

namespace korvel::test {
namespace {

TEST(HelpLimits, OfFindingAndFilteringAreNamedInEveryLanguage) {
  for (const QString language : {"eng", "ger", "fre", "spa", "ita"}) {
    QFile file(QStringLiteral(KORVEL_HELP_FOLDER "/%1/find-filter.html").arg(language));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    QString text = QString::fromUtf8(file.readAll());
    // Thousands are grouped by a comma, a point, or a no-break space.
    for (const char16_t group : {u',', u'.', u'\u00A0'}) text.replace(QChar(group), QString());
    for (const std::size_t limit : {results::mostListedValues, std::size_t{results::mostPatternSteps}})
      EXPECT_TRUE(text.contains(QString::number(limit))) << language.toStdString() << ' ' << limit;
  }
}

}  // namespace
}  // namespace korvel::test
