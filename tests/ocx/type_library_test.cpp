// The compiled type library, read back from the control's file.
#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/wide_text_windows.h"
#include "tests/ocx/automation_text.h"

namespace korvel::embedded {
extern const std::string_view typeLibraryTable;
}  // namespace korvel::embedded

namespace korvel::ocx {
namespace {

/// The table's lines without its comment.
std::string table() {
  std::istringstream lines{std::string(embedded::typeLibraryTable)};
  std::string text;
  for (std::string line; std::getline(lines, line);)
    if (!line.starts_with('#')) text += line + '\n';
  return text;
}

class TypeLibrary : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(::LoadTypeLibEx(lossyWideFromUtf8(KORVEL_OCX).c_str(), REGKIND_NONE, &library_), S_OK);
  }
  void TearDown() override {
    for (IUnknown* object : taken_) object->Release();
    if (library_ != nullptr) library_->Release();
  }

  ITypeInfo& type(const wchar_t* name) {
    std::wstring wanted(name);
    ITypeInfo* found = nullptr;
    MEMBERID member = 0;
    USHORT count = 1;
    EXPECT_EQ(library_->FindName(wanted.data(), 0, &found, &member, &count), S_OK);
    return kept(found);
  }
  ITypeInfo& kept(ITypeInfo* type) {
    if (type == nullptr) throw std::runtime_error("no such type");
    taken_.push_back(type);
    return *type;
  }
  ITypeInfo& referenced(ITypeInfo& owner, UINT index) {
    HREFTYPE reference = 0;
    ITypeInfo* found = nullptr;
    EXPECT_EQ(owner.GetRefTypeOfImplType(index, &reference), S_OK);
    EXPECT_EQ(owner.GetRefTypeInfo(reference, &found), S_OK);
    return kept(found);
  }
  static TYPEATTR attributes(ITypeInfo& type) {
    TYPEATTR* lent = nullptr;
    EXPECT_EQ(type.GetTypeAttr(&lent), S_OK);
    const TYPEATTR copy = *lent;
    type.ReleaseTypeAttr(lent);
    return copy;
  }

  ITypeLib* library_ = nullptr;

 private:
  std::vector<IUnknown*> taken_;
};

TEST_F(TypeLibrary, IsWhatTheTableSays) {
  EXPECT_EQ(test::textOf(*library_), table());
}

TEST_F(TypeLibrary, IsOfThisProcessorsWidth) {
  TLIBATTR* lent = nullptr;
  ASSERT_EQ(library_->GetLibAttr(&lent), S_OK);
  EXPECT_EQ(lent->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  EXPECT_EQ(lent->lcid, 0U);
  library_->ReleaseTLibAttr(lent);
}

TEST_F(TypeLibrary, TheControlHasOneInterfaceAndOneSourceOfEvents) {
  ITypeInfo& control = type(L"AuditViewer");
  const TYPEATTR facts = attributes(control);
  EXPECT_EQ(facts.wTypeFlags, TYPEFLAG_FCONTROL | TYPEFLAG_FCANCREATE);
  ASSERT_EQ(facts.cImplTypes, 2);
  INT flags = 0;
  EXPECT_EQ(control.GetImplTypeFlags(0, &flags), S_OK);
  EXPECT_EQ(flags, IMPLTYPEFLAG_FDEFAULT);
  EXPECT_TRUE(IsEqualGUID(attributes(referenced(control, 0)).guid, attributes(type(L"_AuditViewer")).guid));
  EXPECT_EQ(control.GetImplTypeFlags(1, &flags), S_OK);
  EXPECT_EQ(flags, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
  EXPECT_TRUE(IsEqualGUID(attributes(referenced(control, 1)).guid, attributes(type(L"_AuditViewerEvents")).guid));
}

TEST_F(TypeLibrary, TheInterfaceIsDualAndItsMethodsFollowThoseOfIDispatch) {
  ITypeInfo& dispatch = type(L"_AuditViewer");
  constexpr WORD wanted = TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FHIDDEN;
  EXPECT_EQ(attributes(dispatch).wTypeFlags & wanted, wanted);
  ITypeInfo& methods = referenced(dispatch, static_cast<UINT>(-1));
  const TYPEATTR facts = attributes(methods);
  ASSERT_EQ(facts.typekind, TKIND_INTERFACE);
  EXPECT_NE(facts.wTypeFlags & TYPEFLAG_FOLEAUTOMATION, 0);
  // 22 methods, and four properties with two functions each.
  ASSERT_EQ(facts.cFuncs, 30);
  constexpr std::size_t ofDispatch = 7;
  EXPECT_EQ(facts.cbSizeVft, (ofDispatch + 30) * sizeof(void*));
  for (UINT index = 0; index < facts.cFuncs; ++index) {
    FUNCDESC* lent = nullptr;
    ASSERT_EQ(methods.GetFuncDesc(index, &lent), S_OK);
    EXPECT_EQ(static_cast<std::size_t>(lent->oVft), (ofDispatch + index) * sizeof(void*));
    EXPECT_EQ(lent->callconv, CC_STDCALL);
    EXPECT_EQ(lent->elemdescFunc.tdesc.vt, VT_HRESULT);
    const bool property = lent->invkind != INVOKE_FUNC;
    EXPECT_EQ((lent->wFuncFlags & FUNCFLAG_FBINDABLE) != 0, property) << lent->memid;
    methods.ReleaseFuncDesc(lent);
  }
  // Its own parent is the system's, not a copy in this library.
  ITypeInfo& parent = referenced(methods, 0);
  EXPECT_TRUE(IsEqualGUID(attributes(parent).guid, IID_IDispatch));
  ITypeLib* home = nullptr;
  UINT place = 0;
  ASSERT_EQ(parent.GetContainingTypeLib(&home, &place), S_OK);
  EXPECT_NE(home, library_);
  home->Release();
}

TEST_F(TypeLibrary, NamesAreFoundWithoutCaseAndWithTheirArguments) {
  std::wstring method(L"GETEXPORTPATH");
  std::wstring title(L"dialogtext");
  std::wstring files(L"Files");
  std::array<LPOLESTR, 3> names{method.data(), title.data(), files.data()};
  std::array<MEMBERID, 3> numbers{};
  ASSERT_EQ(type(L"_AuditViewer").GetIDsOfNames(names.data(), 3, numbers.data()), S_OK);
  EXPECT_EQ(numbers, (std::array<MEMBERID, 3>{6, 0, 1}));
}

}  // namespace
}  // namespace korvel::ocx
