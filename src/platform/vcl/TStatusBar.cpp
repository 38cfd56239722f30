#include "vcl/TStatusBar.h"

namespace tarn {
namespace {

constexpr TPropInfo StatusBarProps[] = {
    Published<&TStatusBar::SimpleText, &TStatusBar::SetSimpleText>("SimpleText"),
};

} // namespace

constinit const TClassRecord TStatusBar::ClassRecord{"TStatusBar", &TControl::ClassRecord,
                                                     CreateObject<TStatusBar>, StatusBarProps};

} // namespace tarn
