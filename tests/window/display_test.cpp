// The surroundings of these tests: a display on which windows appear and are painted.
#include <gtest/gtest.h>

#include <windows.h>

namespace {

constexpr COLORREF kColour = RGB(200, 30, 60);

TEST(Display, ShowsWhatIsPainted) {
    HWND const window = CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, 100, 60,
                                        nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr) << GetLastError();
    HDC const dc = GetDC(window);
    const RECT inside = {0, 0, 100, 60};
    HBRUSH const brush = CreateSolidBrush(kColour);
    FillRect(dc, &inside, brush);
    GdiFlush();
    EXPECT_EQ(GetPixel(dc, 50, 30), kColour);
    DeleteObject(brush);
    ReleaseDC(window, dc);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_TRUE(DestroyWindow(window));
}

} // namespace
