#include "ocx/stored_stream.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ocx/failure.h"

namespace korvel::ocx {
namespace {

constexpr std::uint32_t mark = 0x3156414B;  // "KAV1"
constexpr std::uint32_t version = 1;
/// No form has more; whatever says so is no stream of the control.
constexpr std::uint32_t longest = 1 << 20;

enum class Kind : std::uint32_t { boolean = 1, number = 2, text = 3 };

class Writer {
 public:
  void number(std::uint32_t value) {
    const auto* bytes = reinterpret_cast<const char*>(&value);
    bytes_.append(bytes, sizeof(value));
  }
  void text(const std::wstring& value) {
    number(static_cast<std::uint32_t>(value.size()));
    bytes_.append(reinterpret_cast<const char*>(value.data()), value.size() * sizeof(wchar_t));
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

[[noreturn]] void damaged() {
  throw Failure(STG_E_READFAULT, L"The stored properties of the control are damaged or incomplete.");
}

class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}

  std::uint32_t number() {
    std::uint32_t value = 0;
    take(&value, sizeof(value));
    return value;
  }
  std::wstring text() {
    const std::uint32_t length = number();
    if (length > (bytes_.size() - place_) / sizeof(wchar_t)) damaged();
    std::wstring value(length, L'\0');
    take(value.data(), length * sizeof(wchar_t));
    return value;
  }

 private:
  void take(void* to, std::size_t size) {
    if (size > bytes_.size() - place_) damaged();
    std::memcpy(to, bytes_.data() + place_, size);
    place_ += size;
  }

  const std::string& bytes_;
  std::size_t place_ = 0;
};

std::string bytesOf(const std::vector<StreamedProperty>& properties) {
  Writer writer;
  writer.number(static_cast<std::uint32_t>(properties.size()));
  for (const StreamedProperty& each : properties) {
    writer.text(each.name);
    writer.number(static_cast<std::uint32_t>(each.value.index()) + 1);
    if (const bool* boolean = std::get_if<bool>(&each.value)) writer.number(*boolean ? 1 : 0);
    if (const LONG* number = std::get_if<LONG>(&each.value)) writer.number(static_cast<std::uint32_t>(*number));
    if (const std::wstring* text = std::get_if<std::wstring>(&each.value)) writer.text(*text);
  }
  return writer.bytes();
}

void write(IStream& stream, const std::string& bytes) {
  ULONG written = 0;
  check(stream.Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written));
  if (written != bytes.size()) throw Failure(STG_E_MEDIUMFULL, systemText(STG_E_MEDIUMFULL));
}

std::string read(IStream& stream, std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t place = 0; place < size;) {
    ULONG got = 0;
    check(stream.Read(bytes.data() + place, static_cast<ULONG>(size - place), &got));
    if (got == 0) damaged();
    place += got;
  }
  return bytes;
}

}  // namespace

void writeProperties(IStream& stream, const std::vector<StreamedProperty>& properties) {
  const std::string content = bytesOf(properties);
  Writer head;
  head.number(mark);
  head.number(version);
  head.number(static_cast<std::uint32_t>(content.size()));
  write(stream, head.bytes() + content);
}

std::vector<StreamedProperty> readProperties(IStream& stream) {
  const std::string headBytes = read(stream, 3 * sizeof(std::uint32_t));
  Reader head(headBytes);
  if (head.number() != mark) damaged();
  if (head.number() > version)
    throw Failure(STG_E_OLDDLL, L"The properties of the control were stored by a newer version of it.");
  const std::uint32_t size = head.number();
  if (size > longest) damaged();
  const std::string content = read(stream, size);
  Reader reader(content);
  std::vector<StreamedProperty> properties;
  for (std::uint32_t left = reader.number(); left > 0; --left) {
    StreamedProperty property;
    property.name = reader.text();
    switch (static_cast<Kind>(reader.number())) {
      case Kind::boolean:
        property.value = reader.number() != 0;
        break;
      case Kind::number:
        property.value = static_cast<LONG>(reader.number());
        break;
      case Kind::text:
        property.value = reader.text();
        break;
      default:
        damaged();
    }
    properties.push_back(std::move(property));
  }
  return properties;
}

std::size_t sizeOf(const std::vector<StreamedProperty>& properties) {
  return 3 * sizeof(std::uint32_t) + bytesOf(properties).size();
}

}  // namespace korvel::ocx
