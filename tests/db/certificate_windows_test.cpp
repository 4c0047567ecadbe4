// The certificates that the system accepts.
#include "db/net/certificate_windows.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db::net {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

// An authority, and two certificates that it issued for plant.example, of which one expired at the end of 2021:
//   printf '[ca]\ndefault_ca=a\n[a]\ndatabase=index\nnew_certs_dir=.\nrand_serial=yes\ndefault_md=sha256\npolicy=p\n'
//   >ca printf 'unique_subject=no\n[p]\ncommonName=supplied\n[req]\ndistinguished_name=d\n[d]\n[root]\n' >>ca printf
//   'basicConstraints=critical,CA:TRUE\nkeyUsage=keyCertSign\n[server]\nsubjectAltName=DNS:plant.example\n' >>ca :
//   >index for n in root server; do
//     openssl req -new -config ca -newkey rsa:2048 -nodes -keyout $n.key -subj "/CN=Korvel test $n" -out $n.csr
//   done
//   openssl ca -batch -notext -config ca -selfsign -keyfile root.key -in root.csr -extensions root
//     -startdate 20200101000000Z -enddate 20991231000000Z -out root.pem
//   for end in 2021 2099; do
//     openssl ca -batch -notext -config ca -cert root.pem -keyfile root.key -in server.csr -extensions server
//       -startdate 20200101000000Z -enddate ${end}1231000000Z -out $end.pem
//   done
constexpr std::string_view authority =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIDBTCCAe2gAwIBAgIUbjXSmpMM2Q7l18AqhLnGvh4wda8wDQYJKoZIhvcNAQEL\n"
    "BQAwGzEZMBcGA1UEAwwQS29ydmVsIHRlc3Qgcm9vdDAgFw0yMDAxMDEwMDAwMDBa\n"
    "GA8yMDk5MTIzMTAwMDAwMFowGzEZMBcGA1UEAwwQS29ydmVsIHRlc3Qgcm9vdDCC\n"
    "ASIwDQYJKoZIhvcNAQEBBQADggEPADCCAQoCggEBAK2CBFLu07ksd0ttyV3ZB9eM\n"
    "AFjQD30aZ7f/2SqPLIzmTClPSrUDLuix81vzrL0hLX0yB8Ql9214edkbu5au2hHr\n"
    "Ffdy6GWDEV33nxLlfP5uRgBvR5c86P4I5BLbu1QNvkyxkyb5jSq+r2dvWiY+Hw6A\n"
    "RYuZWhpiLQRWRCPoh1PWhFJDhXBX95FUv86m5sVfVOYyPif0N+uX7RW9jYwBK3q+\n"
    "Bb6WxAv2Vc+lDLNhgVYC6SmjohNQNB95tKd+VmcDwniit908+rnvuLa6Dozz4Owa\n"
    "GYNk7hJX1+HXMQ/ptxHM93gk9X4k1ZDYcyvgeuGQMaldH70GbVgCDit8IkXHGRUC\n"
    "AwEAAaM/MD0wDwYDVR0TAQH/BAUwAwEB/zALBgNVHQ8EBAMCAgQwHQYDVR0OBBYE\n"
    "FDjvuyljSJafVFrFEGBi4DMBbEKgMA0GCSqGSIb3DQEBCwUAA4IBAQA+FnOTmSHJ\n"
    "QonYscJ5IQg9mZY24sSq9bnLT5kEDjf8OGaHvus+F9XPfOCif/NhlaU3UMOp14Iz\n"
    "BF6aG3C8vrU31h1vuGD8qExYYlgSLXvLfhargUX/hewo5As1BUSgW++WrwyYy0xv\n"
    "Y9qNXUz42NOu7W5CWQ6z7f6XkeSLQlcDOGH9WPNb+jQ9IAoCYIMs7TblHBP10Qwv\n"
    "X0m7jDnpVlLzUgwlDT8/J0wv29hsvA69mfHX+19yxliCiPsfaYqmEOz5kLNiAGnm\n"
    "7fnc49Oy+UrtC37z3bKX2xMqZ7YmPy1wE44usWbGmKWCqGenEmOeUlBQwPs4/2zY\n"
    "QIBSiL6oaIOP\n"
    "-----END CERTIFICATE-----\n";
constexpr std::string_view current =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIDJDCCAgygAwIBAgIULl/MrWzefbjadJXUvHQ4BjmQx2wwDQYJKoZIhvcNAQEL\n"
    "BQAwGzEZMBcGA1UEAwwQS29ydmVsIHRlc3Qgcm9vdDAgFw0yMDAxMDEwMDAwMDBa\n"
    "GA8yMDk5MTIzMTAwMDAwMFowHTEbMBkGA1UEAwwSS29ydmVsIHRlc3Qgc2VydmVy\n"
    "MIIBIjANBgkqhkiG9w0BAQEFAAOCAQ8AMIIBCgKCAQEApK53tcklGyjCmKd4LZvI\n"
    "QbjrKA9Q7WTxVzej9pnFv8AzvYFqZMXcvYqyDQ1JKvp7UpWqSJxXHbDTb00fWlwN\n"
    "NaiIqJY1YRb8AqEd75X5I7B9fQs4K3aprmLn+PAABOyqaUsPlFdRnmJVDJVR28Fo\n"
    "DzR/+/OIMBQMTgrB7MaGErQuQkl6JiFDKVtOf3Rokp8boL/Cf69VJMMk5/tAwOA9\n"
    "/AFqGMi4R0YUwG/lEihv8x5IwAKJ5uvUiUQ5jaqu/1ckmibomS5UggxY2LnElgAj\n"
    "EUxZH8UARpL5ZbPNqdrtpYNG2P/NpmEcS4N2pxCoXxsS7tMDS9fKsM2DBfZh0ICt\n"
    "awIDAQABo1wwWjAYBgNVHREEETAPgg1wbGFudC5leGFtcGxlMB0GA1UdDgQWBBRk\n"
    "2lFfqvFxQirgOCS5WUfwq8mz8zAfBgNVHSMEGDAWgBQ477spY0iWn1RaxRBgYuAz\n"
    "AWxCoDANBgkqhkiG9w0BAQsFAAOCAQEABfCpmKrQ00aV+cnIHCvYfVDiAgSrSuAE\n"
    "rl/VkYU9fIuCoOnpU7W8/c2K4a+XNykdp62agt8Y/AwaredO1U5fV4cFC3kTwiwT\n"
    "UcdLfOvWjfvmNYd5W1F8FSOTFQY6MQljQjPooQ6lZ9XKjOmIJp+91QutxHK+fl/H\n"
    "wTQ6+5eEyic1GGxU2I4bUGLpxfVdBYZEiLcjjro6VBGyJNkKFAuTnMlANenyaTdD\n"
    "nqtp3gCE/zfgky1kty5eOL6FHaaiqnsYNwA4leJsL7LC4b47Pgmg13zJMOk2xxEf\n"
    "4os/Lefe6mnWD7r/aS52oWIarCBcSLS/Fx1FIj3mItejQYDgdoKl0A==\n"
    "-----END CERTIFICATE-----\n";
constexpr std::string_view expired =
    "-----BEGIN CERTIFICATE-----\n"
    "MIIDIjCCAgqgAwIBAgIUbBr79gNbyP4stDDzLdqPze6IPVcwDQYJKoZIhvcNAQEL\n"
    "BQAwGzEZMBcGA1UEAwwQS29ydmVsIHRlc3Qgcm9vdDAeFw0yMDAxMDEwMDAwMDBa\n"
    "Fw0yMTEyMzEwMDAwMDBaMB0xGzAZBgNVBAMMEktvcnZlbCB0ZXN0IHNlcnZlcjCC\n"
    "ASIwDQYJKoZIhvcNAQEBBQADggEPADCCAQoCggEBAKSud7XJJRsowpineC2byEG4\n"
    "6ygPUO1k8Vc3o/aZxb/AM72BamTF3L2Ksg0NSSr6e1KVqkicVx2w029NH1pcDTWo\n"
    "iKiWNWEW/AKhHe+V+SOwfX0LOCt2qa5i5/jwAATsqmlLD5RXUZ5iVQyVUdvBaA80\n"
    "f/vziDAUDE4KwezGhhK0LkJJeiYhQylbTn90aJKfG6C/wn+vVSTDJOf7QMDgPfwB\n"
    "ahjIuEdGFMBv5RIob/MeSMACiebr1IlEOY2qrv9XJJom6JkuVIIMWNi5xJYAIxFM\n"
    "WR/FAEaS+WWzzana7aWDRtj/zaZhHEuDdqcQqF8bEu7TA0vXyrDNgwX2YdCArWsC\n"
    "AwEAAaNcMFowGAYDVR0RBBEwD4INcGxhbnQuZXhhbXBsZTAdBgNVHQ4EFgQUZNpR\n"
    "X6rxcUIq4DgkuVlH8KvJs/MwHwYDVR0jBBgwFoAUOO+7KWNIlp9UWsUQYGLgMwFs\n"
    "QqAwDQYJKoZIhvcNAQELBQADggEBACBBvq2zfMPBdz0tLPyUzG1mg7Y8z21C+F6+\n"
    "DIvVu1GJ6PfVu51x7hr6VDK0Pqa+tKauzUbE7sJ5nDj43ARIIsIkHtiuUzYMi45J\n"
    "erNuNM2AiLy8ZrtZRJ0W32aPNG1eiFdWvAqyS8hpet3UYxMU0Jjmy0+wcX2zexZP\n"
    "ntGX08CtFYZPNcSh3Ez3NEmyrlNtd4yYI7E7McS617QG/PZhBWAaEKECPTHmIEE8\n"
    "9+g8A9lakS7hlH21CAEw4kLqq/FsrMhyPZZWxBUhUyyHXVbA9R/oOF2tEoVEwU31\n"
    "GmtKE4vYjWkkMxC7ZNiGyCo0Rl6dCVDtrR4INwK00Q9fNIlQ1eQ=\n"
    "-----END CERTIFICATE-----\n";

Certificate certificateOf(std::string_view pem) {
  std::vector<BYTE> bytes(pem.size());
  auto size = static_cast<DWORD>(bytes.size());
  CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER, bytes.data(), &size,
                       nullptr, nullptr);
  return Certificate(CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(), size));
}

class CertificateOnWindows : public ::testing::Test {
 protected:
  std::string fileOf(std::string_view text) {
    writeFileAtomically(folder_ / "authorities.pem", text);
    return utf8FromPath(folder_ / "authorities.pem");
  }
  static std::string problem(std::string_view certificate, const std::string& host, const std::string& authorities) {
    return problemOf(certificateOf(certificate), host, authorities, Deadline(20s));
  }

  test::TemporaryFolder folder_;
};

TEST_F(CertificateOnWindows, IsTrustedWhereItsAuthorityIsAndTheHostIsRight) {
  EXPECT_EQ(problem(current, "plant.example", fileOf(authority)), "");
  EXPECT_EQ(problem(current, "PLANT.example", fileOf("Our authority\r\n" + std::string(authority))), "");
  EXPECT_EQ(problem(current, "plant.example", fileOf(std::string(expired) + std::string(authority))), "");
}

TEST_F(CertificateOnWindows, IsNotTrustedFromAnUnknownAuthority) {
  EXPECT_NE(problem(current, "plant.example", ""), "");
  EXPECT_NE(problem(current, "plant.example", fileOf(expired)), "") << "a certificate, but not the authority's";
}

TEST_F(CertificateOnWindows, IsNotTrustedForAnotherHost) {
  for (const char* host : {"plant.example.org", "example", "other.example", "www.plant.example", "127.0.0.1"})
    EXPECT_NE(problem(current, host, fileOf(authority)), "") << host;
}

TEST_F(CertificateOnWindows, IsNotTrustedOnceItHasExpired) {
  EXPECT_NE(problem(expired, "plant.example", fileOf(authority)), "");
}

TEST_F(CertificateOnWindows, IsNotJudgedByAFileWithoutCertificates) {
  const auto refusal = [](const std::string& file) {
    const auto error = test::errorOf([&] { (void)problem(current, "plant.example", file); });
    return error ? error->textKey() : "none";
  };
  for (const std::string_view text :
       {"", "no certificate", "-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n",
        "-----BEGIN CERTIFICATE-----\n"})
    EXPECT_EQ(refusal(fileOf(text)), "failure.noAuthorities") << text;
  EXPECT_EQ(refusal(utf8FromPath(folder_ / "nowhere.pem")), "failure.noAuthorities");
  const auto error = test::errorOf([&] { (void)problem(current, "plant.example", fileOf("")); });
  EXPECT_THAT(error->description(), HasSubstr("authorities.pem"));
}

}  // namespace
}  // namespace korvel::db::net
