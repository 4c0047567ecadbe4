#include "tests/ocx/automation_text.h"

#include <array>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

#include "base/wide_text_windows.h"

namespace korvel::test {
namespace {

void require(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the type library answers " + std::to_string(result));
}

std::string taken(BSTR text) {
  const std::string utf8 = text != nullptr ? utf8FromWide({text, ::SysStringLen(text)}) : std::string();
  ::SysFreeString(text);
  return utf8;
}

std::string textOf(const GUID& identifier) {
  // Braces and a terminator belong to it.
  std::array<OLECHAR, 39> text{};
  ::StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
  return utf8FromWide({text.data() + 1, text.size() - 3});
}

std::string line(const std::string& kind, const std::string& name, const std::string& id, const std::string& type = {},
                 const std::string& arguments = {}, const std::string& description = {}) {
  return kind + '\t' + name + '\t' + id + '\t' + type + '\t' + arguments + '\t' + description + '\n';
}

struct Release {
  void operator()(IUnknown* object) const { object->Release(); }
};
using TypeInfo = std::unique_ptr<ITypeInfo, Release>;

/// Attributes and descriptions that the type information lends.
template <typename Lent>
class Loan {
 public:
  Loan(ITypeInfo& owner, Lent* lent, void (STDMETHODCALLTYPE ITypeInfo::*giveBack)(Lent*))
      : owner_(owner), lent_(lent), giveBack_(giveBack) {}
  ~Loan() { (owner_.*giveBack_)(lent_); }
  Loan(const Loan&) = delete;
  Loan& operator=(const Loan&) = delete;
  const Lent* operator->() const { return lent_; }
  const Lent& operator*() const { return *lent_; }

 private:
  ITypeInfo& owner_;
  Lent* lent_;
  void (STDMETHODCALLTYPE ITypeInfo::*giveBack_)(Lent*);
};

Loan<TYPEATTR> attributesOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  require(type.GetTypeAttr(&attributes));
  return {type, attributes, &ITypeInfo::ReleaseTypeAttr};
}

Loan<FUNCDESC> functionOf(ITypeInfo& type, UINT index) {
  FUNCDESC* function = nullptr;
  require(type.GetFuncDesc(index, &function));
  return {type, function, &ITypeInfo::ReleaseFuncDesc};
}

struct Documentation {
  std::string name;
  std::string description;
};

Documentation documentationOf(ITypeInfo& type, MEMBERID member) {
  BSTR name = nullptr;
  BSTR description = nullptr;
  require(type.GetDocumentation(member, &name, &description, nullptr, nullptr));
  return {taken(name), taken(description)};
}

TypeInfo typeOf(ITypeInfo& owner, HREFTYPE reference) {
  ITypeInfo* type = nullptr;
  require(owner.GetRefTypeInfo(reference, &type));
  return TypeInfo(type);
}

std::string nameOf(ITypeInfo& owner, const TYPEDESC& type) {
  static const std::map<VARTYPE, std::string> names{
      {VT_BOOL, "VARIANT_BOOL"}, {VT_BSTR, "BSTR"}, {VT_I2, "short"}, {VT_HRESULT, "HRESULT"}, {VT_VOID, ""}};
  if (type.vt == VT_USERDEFINED) return documentationOf(*typeOf(owner, type.hreftype), MEMBERID_NIL).name;
  const auto name = names.find(type.vt);
  return name != names.end() ? name->second : "type " + std::to_string(type.vt);
}

/// A function's line; its result is the last argument if that is marked so.
std::string functionLine(ITypeInfo& owner, const std::string& kind, const FUNCDESC& function) {
  const auto count = static_cast<std::size_t>(function.cParams);
  std::vector<BSTR> names(count + 1);
  UINT found = 0;
  require(owner.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &found));
  std::vector<std::string> texts;
  for (UINT index = 0; index < found; ++index) texts.push_back(taken(names[index]));
  texts.resize(names.size());

  std::string type;
  std::string arguments;
  for (std::size_t index = 0; index < count; ++index) {
    const ELEMDESC& argument = function.lprgelemdescParam[index];
    if ((argument.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      type = nameOf(owner, *argument.tdesc.lptdesc);
    } else if (function.invkind == INVOKE_PROPERTYPUT) {
      type = nameOf(owner, argument.tdesc);
    } else {
      if (!arguments.empty()) arguments += ", ";
      arguments += nameOf(owner, argument.tdesc) + ' ' + texts[index + 1];
    }
  }
  return line(kind, texts.front(), std::to_string(function.memid), type, arguments,
              documentationOf(owner, function.memid).description);
}

std::string functionLines(ITypeInfo& type, const std::string& kindOfFunctions) {
  std::string text;
  std::string read;
  const UINT count = attributesOf(type)->cFuncs;
  for (UINT index = 0; index < count; ++index) {
    const auto function = functionOf(type, index);
    const bool property = function->invkind == INVOKE_PROPERTYGET || function->invkind == INVOKE_PROPERTYPUT;
    const std::string written = functionLine(type, property ? "property" : kindOfFunctions, *function);
    if (function->invkind == INVOKE_PROPERTYGET) {
      read = written;
      continue;
    }
    // A property that can be read and set is one line; anything else is shown as it is.
    text += read != written ? read + written : written;
    read.clear();
  }
  return text + read;
}

std::string valueLines(ITypeInfo& type) {
  std::string text;
  const UINT count = attributesOf(type)->cVars;
  for (UINT index = 0; index < count; ++index) {
    VARDESC* lent = nullptr;
    require(type.GetVarDesc(index, &lent));
    const Loan<VARDESC> value(type, lent, &ITypeInfo::ReleaseVarDesc);
    text += line("value", documentationOf(type, value->memid).name, std::to_string(value->lpvarValue->lVal));
  }
  return text;
}

std::string typeLines(ITypeInfo& type) {
  const auto [name, description] = documentationOf(type, MEMBERID_NIL);
  const auto attributes = attributesOf(type);
  const std::string id = textOf(attributes->guid);
  switch (attributes->typekind) {
    case TKIND_ENUM:
      return line("enumeration", name, id, {}, {}, description) + valueLines(type);
    case TKIND_COCLASS:
      return line("coclass", name, id, {}, {}, description);
    case TKIND_DISPATCH:
      break;
    default:
      return line("kind " + std::to_string(attributes->typekind), name, id);
  }
  if ((attributes->wTypeFlags & TYPEFLAG_FDUAL) == 0)
    return line("events", name, id, {}, {}, description) + functionLines(type, "event");
  // The other face of a dual interface has its own functions alone.
  HREFTYPE reference = 0;
  require(type.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  return line("interface", name, id, {}, {}, description) + functionLines(*typeOf(type, reference), "method");
}

}  // namespace

std::string textOf(ITypeLib& library) {
  BSTR name = nullptr;
  BSTR description = nullptr;
  require(library.GetDocumentation(-1, &name, &description, nullptr, nullptr));
  TLIBATTR* attributes = nullptr;
  require(library.GetLibAttr(&attributes));
  const std::string version = std::to_string(attributes->wMajorVerNum) + '.' + std::to_string(attributes->wMinorVerNum);
  const std::string id = textOf(attributes->guid);
  library.ReleaseTLibAttr(attributes);
  std::string text = line("library", taken(name), id, version, {}, taken(description));
  const UINT count = library.GetTypeInfoCount();
  for (UINT index = 0; index < count; ++index) {
    ITypeInfo* type = nullptr;
    require(library.GetTypeInfo(index, &type));
    text += typeLines(*TypeInfo(type));
  }
  return text;
}

}  // namespace korvel::test
