#include "ocx/registration.h"

// after windows.h
#include <oleauto.h>

#include <array>
#include <memory>
#include <vector>

#include "ocx/control_status.h"
#include "ocx/property_page.h"
#include "ocx/registry_entries.h"

namespace korvel::ocx {
namespace {

struct Release {
  void operator()(IUnknown* object) const { object->Release(); }
};

/// The control's own types, by their names in ocx/type_library.tsv.
struct Identifiers {
  std::wstring library;
  std::wstring version;
  std::wstring control;
  std::wstring members;
  std::wstring events;
};

constexpr const wchar_t* pageName = L"Korvel Audit Viewer property page";
// The verb's name in menus, and that containers offer it.
constexpr const wchar_t* propertiesVerb = L"&Properties,0,2";
constexpr const wchar_t* libraryName = L"Korvel Audit Viewer control";
constexpr const wchar_t* program = L"KorvelAuditViewerOCX.AuditViewer";
constexpr const wchar_t* programVersion = L"KorvelAuditViewerOCX.AuditViewer.1";
// The category of controls. It is in neither category of what is safe: the control opens databases.
constexpr const wchar_t* controls = L"{40FC6ED4-2438-11CF-A3DB-080036F12502}";
// The system's marshallers: for interfaces of a type library, and for events.
constexpr const wchar_t* libraryMarshaller = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* dispatchMarshaller = L"{00020420-0000-0000-C000-000000000046}";
constexpr const wchar_t* platform = sizeof(void*) == 8 ? L"\\0\\win64" : L"\\0\\win32";

std::wstring textOf(const GUID& identifier) {
  std::array<OLECHAR, 39> text{};
  ::StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
  return text.data();
}

HRESULT readType(ITypeLib& library, const wchar_t* name, std::wstring& identifier) {
  std::wstring wanted(name);
  ITypeInfo* found = nullptr;
  MEMBERID member = MEMBERID_NIL;
  USHORT count = 1;
  if (const HRESULT result = library.FindName(wanted.data(), 0, &found, &member, &count); FAILED(result)) return result;
  if (count == 0) return TYPE_E_ELEMENTNOTFOUND;
  const std::unique_ptr<ITypeInfo, Release> type(found);
  TYPEATTR* attributes = nullptr;
  if (const HRESULT result = type->GetTypeAttr(&attributes); FAILED(result)) return result;
  identifier = textOf(attributes->guid);
  type->ReleaseTypeAttr(attributes);
  return S_OK;
}

HRESULT readIdentifiers(const std::wstring& file, Identifiers& read) {
  ITypeLib* loaded = nullptr;
  if (const HRESULT result = ::LoadTypeLibEx(file.c_str(), REGKIND_NONE, &loaded); FAILED(result)) return result;
  const std::unique_ptr<ITypeLib, Release> library(loaded);
  TLIBATTR* attributes = nullptr;
  if (const HRESULT result = library->GetLibAttr(&attributes); FAILED(result)) return result;
  read.library = textOf(attributes->guid);
  read.version = std::to_wstring(attributes->wMajorVerNum) + L'.' + std::to_wstring(attributes->wMinorVerNum);
  library->ReleaseTLibAttr(attributes);
  if (const HRESULT result = readType(*library, L"AuditViewer", read.control); FAILED(result)) return result;
  if (const HRESULT result = readType(*library, L"_AuditViewer", read.members); FAILED(result)) return result;
  return readType(*library, L"_AuditViewerEvents", read.events);
}

std::wstring keyOfControl(const Identifiers& ids) {
  return L"CLSID\\" + ids.control;
}
std::wstring keyOfPage() {
  return L"CLSID\\" + textOf(propertyPageId);
}
std::wstring keyOfLibrary(const Identifiers& ids) {
  return L"TypeLib\\" + ids.library;
}

std::vector<RegistryEntry> entriesOf(const Identifiers& ids, const std::wstring& file) {
  const std::wstring control = keyOfControl(ids);
  const std::wstring library = keyOfLibrary(ids) + L'\\' + ids.version;
  std::vector<RegistryEntry> entries{
      {control, {}, controlName},
      {control + L"\\Control", {}, {}},
      {control + L"\\Implemented Categories\\" + controls, {}, {}},
      {control + L"\\InprocServer32", {}, file},
      {control + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {control + L"\\MiscStatus", {}, L"0"},
      {control + L"\\MiscStatus\\1", {}, std::to_wstring(miscStatus)},
      {control + L"\\ProgID", {}, programVersion},
      {control + L"\\ToolboxBitmap32", {}, file + L", 1"},
      {control + L"\\TypeLib", {}, ids.library},
      {control + L"\\Verb\\" + std::to_wstring(propertiesVerbNumber), {}, propertiesVerb},
      {control + L"\\Version", {}, ids.version},
      {control + L"\\VersionIndependentProgID", {}, program},
      {keyOfPage(), {}, pageName},
      {keyOfPage() + L"\\InprocServer32", {}, file},
      {keyOfPage() + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {program, {}, controlName},
      {std::wstring(program) + L"\\CLSID", {}, ids.control},
      {std::wstring(program) + L"\\CurVer", {}, programVersion},
      {programVersion, {}, controlName},
      {std::wstring(programVersion) + L"\\CLSID", {}, ids.control},
      {library, {}, libraryName},
      {library + platform, {}, file},
      {library + L"\\FLAGS", {}, L"0"},
      {library + L"\\HELPDIR", {}, file.substr(0, file.find_last_of(L'\\'))},
  };
  const auto addInterface = [&](const std::wstring& identifier, const wchar_t* name, const wchar_t* marshaller) {
    const std::wstring key = L"Interface\\" + identifier;
    entries.push_back({key, {}, name});
    entries.push_back({key + L"\\ProxyStubClsid32", {}, marshaller});
    entries.push_back({key + L"\\TypeLib", {}, ids.library});
    entries.push_back({key + L"\\TypeLib", L"Version", ids.version});
  };
  addInterface(ids.members, L"_AuditViewer", libraryMarshaller);
  addInterface(ids.events, L"_AuditViewerEvents", dispatchMarshaller);
  return entries;
}

bool isSameFile(const std::wstring& left, const std::wstring& right) {
  return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_EQUAL;
}

/// The library's entry for this processor width; the rest of it when that was the last.
LSTATUS removeLibrary(HKEY classes, const Identifiers& ids) {
  const std::wstring library = keyOfLibrary(ids);
  const std::wstring version = library + L'\\' + ids.version;
  if (const LSTATUS status = removeKey(classes, version + platform); status != ERROR_SUCCESS) return status;
  if (!removeIfEmpty(classes, version + L"\\0")) return ERROR_SUCCESS;
  if (const LSTATUS status = removeKey(classes, version); status != ERROR_SUCCESS) return status;
  removeIfEmpty(classes, library);
  return ERROR_SUCCESS;
}

}  // namespace

HRESULT registerControl(HKEY classes, const std::wstring& file) {
  Identifiers ids;
  if (const HRESULT result = readIdentifiers(file, ids); FAILED(result)) return result;
  return HRESULT_FROM_WIN32(static_cast<DWORD>(writeEntries(classes, entriesOf(ids, file))));
}

HRESULT unregisterControl(HKEY classes, const std::wstring& file) {
  Identifiers ids;
  if (const HRESULT result = readIdentifiers(file, ids); FAILED(result)) return result;
  const std::wstring registered = valueOf(classes, keyOfControl(ids) + L"\\InprocServer32");
  if (!registered.empty() && !isSameFile(registered, file)) return S_OK;
  const std::array<std::wstring, 5> others{program, programVersion, L"Interface\\" + ids.members,
                                           L"Interface\\" + ids.events, keyOfPage()};
  for (const std::wstring& key : others)
    if (const LSTATUS status = removeKey(classes, key); status != ERROR_SUCCESS)
      return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  if (const LSTATUS status = removeLibrary(classes, ids); status != ERROR_SUCCESS)
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  // Last: as long as it is there, unregistering can be tried again.
  const LSTATUS status = removeKey(classes, keyOfControl(ids));
  // A new user has none of these.
  for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"}) removeIfEmpty(classes, key);
  return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

}  // namespace korvel::ocx
