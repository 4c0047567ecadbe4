#include "evidence/sha256.h"

#include <gtest/gtest.h>

namespace korvel::evidence {
namespace {

/// The examples of FIPS 180-4.
TEST(Sha256Values, AreThoseOfTheStandard) {
  EXPECT_EQ(hexText(Sha256::of("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hexText(Sha256::of("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hexText(Sha256::of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Sha256Values, AreTheSameInParts) {
  Sha256 sum;
  for (int i = 0; i < 1000000; i += 1000) sum.update(std::string(1000, 'a'));
  EXPECT_EQ(hexText(sum.finish()), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  sum.update("ab");
  sum.update("");
  sum.update("c");
  EXPECT_EQ(sum.finish(), Sha256::of("abc"));
}

TEST(Sha256Values, AreReadFromTheirDigits) {
  const Digest digest = Sha256::of("abc");
  EXPECT_EQ(digestFromHex(hexText(digest)), digest);
  EXPECT_EQ(digestFromHex(hexText(digest).substr(1)), std::nullopt);
  EXPECT_EQ(digestFromHex(hexText(digest) + "0"), std::nullopt);
  EXPECT_EQ(digestFromHex(std::string(63, '0') + "g"), std::nullopt);
}

}  // namespace
}  // namespace korvel::evidence
