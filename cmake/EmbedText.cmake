# Writes OUTPUT: a source file that holds the bytes of INPUT as korvel::embedded::SYMBOL. A C++ literal of hexadecimal
# bytes, not a raw string, so that the text may contain anything.
file(READ "${INPUT}" bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include <string_view>
namespace korvel::embedded {
namespace {
const char bytes[] = {${bytes}'\\0'};
}
extern const std::string_view ${SYMBOL};
const std::string_view ${SYMBOL}{bytes, ${size}};
}  // namespace korvel::embedded
")
