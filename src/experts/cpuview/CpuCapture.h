#pragma once

#include "rtl/TypInfo.h"

#include <span>
#include <string>
#include <string_view>

namespace tarn {

class TComponent;
class TForm;
class TStrings;

/// The panes of the IDE's CPU window, and all of them.
enum TCPUViewType : std::uint8_t {
    qsDisasmView,
    qsRegView,
    qsFlagsView,
    qsDumpView,
    qsStackView,
    qsAllViews
};
inline constexpr std::string_view CPUViewTypeNames[] = {
    "qsDisasmView", "qsRegView", "qsFlagsView", "qsDumpView", "qsStackView", "qsAllViews"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TCPUViewType> = EnumType("TCPUViewType", CPUViewTypeNames);

class TPaneReader;

/// What is known of a pane.
struct TCPUPane {
    TCPUViewType Type;
    int CaptionId;                  ///< of the menu and the heading
    std::string_view ComponentName; ///< in the IDE's CPU window; empty for all of them
    /// Appends the lines; `count` is for panes that are read line by line.
    void (*Read)(TPaneReader& pane, TStrings& lines, int count);
};

/// The panes in their order, all of them last.
std::span<const TCPUPane> CPUPanes();

/// The IDE's CPU window: the visible form called "DisassemblyView"; null when there is none.
TForm* FindCPUForm();

/// The most lines that are read of one pane, whatever count is stored: more would not be looked
/// through, and the address space has so many that reading them would neither end nor fit.
inline constexpr int MostPaneLines = 100'000;

/// Appends the text of a pane, or of all with a heading before each and an empty line behind it.
/// The panes are only known by the names of components and published properties. Nothing without
/// the window; a pane that is missing has no lines; a count below 1 gives none of what is read line
/// by line, and one above MostPaneLines that many.
///
/// Repainting of a pane is held back while it is read. Whatever happens, it is resumed, and what
/// was selected in the pane is selected again. Raises EDataHandlingError naming the pane when it
/// lacks a property, shows something else than a number, or is gone in the meantime; the lines read
/// so far stay in the list.
void GetViewText(TStrings& lines, TCPUViewType type, int count);

} // namespace tarn
