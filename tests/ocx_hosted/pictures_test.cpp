// The real viewer as a picture: for containers that paint it themselves, and while a form is designed.
#include <gmock/gmock.h>

#include <cstdint>
#include <set>
#include <vector>

#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::Contains;
using testing::Not;

constexpr int width = 900;
constexpr int height = 600;
using Pixels = std::vector<std::uint32_t>;

class HostedPicture : public HostedControl {
 protected:
  /// What the control paints into a container's device.
  [[nodiscard]] Pixels drawn() const {
    const HDC context = ::CreateCompatibleDC(nullptr);
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof(description.bmiHeader);
    description.bmiHeader.biWidth = width;
    description.bmiHeader.biHeight = -height;
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(context, &description, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ former = ::SelectObject(context, bitmap);
    const RECTL place{0, 0, width, height};
    const auto view = ocx::ComPointer<IViewObject2>::of(control_.get(), IID_IViewObject2);
    EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &place, nullptr, nullptr, 0), S_OK);
    ::GdiFlush();
    const auto* const first = static_cast<const std::uint32_t*>(bits);
    Pixels pixels(first, first + std::size_t{width} * height);
    ::SelectObject(context, former);
    ::DeleteObject(bitmap);
    ::DeleteDC(context);
    for (std::uint32_t& each : pixels) each &= 0x00FFFFFFU;
    return pixels;
  }

  /// What the viewer itself shows.
  [[nodiscard]] Pixels seen() const {
    Pixels pixels(std::size_t{width} * height);
    EXPECT_TRUE(look<PictureOf>("pictureOf")(viewerWindow(), width, height, pixels.data()));
    for (std::uint32_t& each : pixels) each &= 0x00FFFFFFU;
    return pixels;
  }

  /// How many pixels differ.
  [[nodiscard]] static std::size_t differences(const Pixels& one, const Pixels& other) {
    std::size_t count = 0;
    for (std::size_t index = 0; index < one.size(); ++index)
      if (one[index] != other[index]) ++count;
    return count;
  }

  void show() {
    ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
    ASSERT_EQ(container_.move({0, 0, width, height}), S_OK);
    const auto sizeOf = look<SizeOf>("sizeOf");
    ASSERT_TRUE(deliverMessages([&] { return sizeOf(viewerWindow()).cx == width; }));
  }
};

TEST_F(HostedPicture, IsWhatThePersonSees) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  show();
  ASSERT_EQ(container_.invoke(L"TriggerQuery"), S_OK);
  const Pixels picture = drawn();
  EXPECT_GT(std::set<std::uint32_t>(picture.begin(), picture.end()).size(), 64U) << "texts and icons";
  EXPECT_EQ(differences(picture, seen()), 0U);
}

TEST_F(HostedPicture, IsTheSameWhileTheControlIsInactive) {
  const Pixels inactive = drawn();
  EXPECT_GT(std::set<std::uint32_t>(inactive.begin(), inactive.end()).size(), 64U) << "texts and icons";
  show();
  // But for the menus' texts and the corner for resizing, which look otherwise in a window that is active.
  EXPECT_LT(differences(inactive, seen()), std::size_t{width} * height / 50);
}

TEST_F(HostedPicture, StandsInADesignedFormWhichConnectsToNothing) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(container_.connect(), S_OK);
  ASSERT_EQ(container_.setRunning(false), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  EXPECT_EQ(viewerWindow(), nullptr);
  EXPECT_THAT(container_.told(), Not(Contains(testing::StartsWith(L"event"))));
  const Pixels designed = drawn();
  ASSERT_EQ(container_.setRunning(true), S_OK);
  EXPECT_NE(viewerWindow(), nullptr);
  EXPECT_THAT(container_.told(), Contains(L"event 1 " + trail() + L" - [Korvel_Audit]"));
  EXPECT_GT(differences(designed, drawn()), 0U) << "the elements for a database are enabled now";
}

}  // namespace
}  // namespace korvel::test
