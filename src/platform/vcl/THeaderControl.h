#pragma once

#include "vcl/TControl.h"

#include <vector>

namespace tarn {

using TSectionEvent = TMethod<void(TObject* sender, int index)>;
inline constexpr std::string_view SectionEventParams[] = {"Sender", "Index"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TSectionEvent> = MethodType("TSectionEvent",
                                                                  MethodSignatureOf<TSectionEvent>,
                                                                  SectionEventParams);

/// A row of headings, whose widths a user can drag. An index outside the sections raises EListError
/// where nothing else is said.
class THeaderControl : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit THeaderControl(TComponent* owner = nullptr) : TControl(owner) {}

    int SectionCount() const { return static_cast<int>(FSections.size()); }
    /// New sections come last, without a text; a count below 0 is 0.
    void SetSectionCount(int value);
    const std::string& SectionText(int index) const { return At(index).Text; }
    void SetSectionText(int index, std::string_view value);
    int SectionWidth(int index) const { return At(index).Width; } ///< pixels, 50 at first
    void SetSectionWidth(int index, int value); ///< at least the section's MinWidth
    int SectionMinWidth(int index) const { return At(index).MinWidth; } ///< pixels, at least 0
    void SetSectionMinWidth(int index, int value); ///< a section that is narrower grows

    /// The user drags the right edge of the section until it has that width, or its MinWidth.
    /// False, and nothing, for a section that is not there or while the control is disabled or
    /// hidden.
    bool DragSection(int index, int width);
    TSectionEvent OnSectionResize; ///< the user has dragged a section's edge

private:
    struct TSection {
        std::string Text;
        int Width = 50;
        int MinWidth = 0;
    };

    const TSection& At(int index) const;
    TSection& At(int index) { return const_cast<TSection&>(std::as_const(*this).At(index)); }

    std::vector<TSection> FSections;
};

} // namespace tarn
