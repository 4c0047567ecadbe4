// The table of the type library against what the widget has.
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaProperty>
#include <sstream>
#include <string>
#include <vector>

#include "korvel/AuditViewer.h"

namespace korvel::embedded {
extern const std::string_view typeLibraryTable;
}  // namespace korvel::embedded

namespace korvel {
namespace {

struct Member {
  std::string kind;
  std::string name;
  std::string type;
  std::string arguments;
  std::string description;
};

std::vector<Member> table() {
  std::vector<Member> members;
  std::istringstream lines{std::string(embedded::typeLibraryTable)};
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream fields(line);
    Member member;
    std::string number;
    for (std::string* field :
         {&member.kind, &member.name, &number, &member.type, &member.arguments, &member.description})
      std::getline(fields, *field, '\t');
    members.push_back(member);
  }
  return members;
}

std::vector<Member> of(const std::string& kind) {
  std::vector<Member> members = table();
  std::erase_if(members, [&](const Member& each) { return each.kind != kind; });
  return members;
}

/// A type of the table as the widget names it.
std::string widgetType(const std::string& type) {
  if (type == "BSTR") return "QString";
  if (type == "VARIANT_BOOL") return "bool";
  if (type == "short" || type == "DatabaseTypeEnum") return "int";
  return type.empty() ? "void" : type;
}

std::string text(const QByteArray& bytes) {
  return bytes.toStdString();
}

/// Type and name of each argument, one after the other.
std::string argumentsOf(const QMetaMethod& method) {
  std::string all;
  for (int index = 0; index < method.parameterCount(); ++index)
    all += (index == 0 ? "" : ", ") + text(method.parameterTypeName(index)) + ' ' +
           text(method.parameterNames().at(index));
  return all;
}

std::string argumentsOf(const Member& member) {
  std::string all;
  std::istringstream arguments(member.arguments);
  for (std::string type, name; arguments >> type >> name;) {
    if (name.ends_with(',')) name.pop_back();
    all += (all.empty() ? "" : ", ") + widgetType(type) + ' ' + name;
  }
  return all;
}

std::vector<QMetaMethod> ownMethods(QMetaMethod::MethodType type) {
  std::vector<QMetaMethod> methods;
  const QMetaObject& widget = AuditViewer::staticMetaObject;
  for (int index = widget.methodOffset(); index < widget.methodCount(); ++index)
    if (widget.method(index).methodType() == type) methods.push_back(widget.method(index));
  return methods;
}

TEST(TypeLibraryTable, HasTheWidgetsMethodsInTheirOrder) {
  const std::vector<Member> members = of("method");
  const std::vector<QMetaMethod> methods = ownMethods(QMetaMethod::Slot);
  ASSERT_EQ(members.size(), 22U);
  ASSERT_GE(methods.size(), members.size());
  for (std::size_t index = 0; index < members.size(); ++index) {
    EXPECT_EQ(text(methods[index].name()), members[index].name);
    EXPECT_EQ(text(methods[index].typeName()), widgetType(members[index].type)) << members[index].name;
    EXPECT_EQ(argumentsOf(methods[index]), argumentsOf(members[index])) << members[index].name;
  }
}

TEST(TypeLibraryTable, HasTheWidgetsEventsInTheirOrder) {
  const std::vector<Member> events = of("event");
  const std::vector<QMetaMethod> methods = ownMethods(QMetaMethod::Signal);
  ASSERT_EQ(events.size(), 2U);
  ASSERT_GE(methods.size(), events.size());
  for (std::size_t index = 0; index < events.size(); ++index) {
    EXPECT_EQ(text(methods[index].name()), events[index].name);
    EXPECT_EQ(argumentsOf(methods[index]), argumentsOf(events[index]));
  }
}

TEST(TypeLibraryTable, HasTheWidgetsPropertiesInTheirOrder) {
  const std::vector<Member> properties = of("property");
  const QMetaObject& widget = AuditViewer::staticMetaObject;
  ASSERT_EQ(properties.size(), 4U);
  for (std::size_t index = 0; index < properties.size(); ++index) {
    const QMetaProperty property = widget.property(widget.propertyOffset() + static_cast<int>(index));
    EXPECT_EQ(property.name(), properties[index].name);
    EXPECT_EQ(property.typeName(), widgetType(properties[index].type));
    EXPECT_TRUE(property.isWritable());
    const int information = widget.indexOfClassInfo(property.name());
    EXPECT_EQ(information >= 0 ? widget.classInfo(information).value() : "", properties[index].description);
  }
}

TEST(TypeLibraryTable, HasTheWidgetsEnumeration) {
  const QMetaObject& widget = AuditViewer::staticMetaObject;
  const QMetaEnum enumeration = widget.enumerator(widget.indexOfEnumerator("DatabaseTypeEnum"));
  const std::vector<Member> values = of("value");
  ASSERT_EQ(static_cast<int>(values.size()), enumeration.keyCount());
  for (std::size_t index = 0; index < values.size(); ++index)
    EXPECT_EQ(enumeration.key(static_cast<int>(index)), values[index].name);
}

}  // namespace
}  // namespace korvel
