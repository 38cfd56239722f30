#include "TEditorMirror.h"

#include "QtKeys.h"
#include "Source/EditorKeys.h"
#include "Source/TSourceBuffer.h"
#include "TFrontEnd.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QVBoxLayout>
#include <Qsci/qscicommandset.h>
#include <Qsci/qscilexercpp.h>
#include <Qsci/qscilexerpascal.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn {
namespace {

// --- What two texts have in common ------------------------------------------------------------

/// A text in two pieces, of which either may be empty.
using TPieces = std::array<std::string_view, 2>;

/// How many bytes the two begin with alike, or with `front` unset end with alike.
template <bool front> std::size_t Common(std::string_view a, std::string_view b) {
    // Whole blocks first: memcmp is many times faster than a loop over bytes.
    constexpr std::size_t block = 4096;
    const std::size_t most = std::min(a.size(), b.size());
    const auto from = [](std::string_view text, std::size_t at, std::size_t size) {
        return text.data() + (front ? at : text.size() - at - size);
    };
    std::size_t at = 0;
    while (most - at >= block && std::memcmp(from(a, at, block), from(b, at, block), block) == 0)
        at += block;
    while (at < most && *from(a, at, 1) == *from(b, at, 1)) ++at;
    return at;
}

/// The bytes from..to of a text.
TPieces Between(const TPieces& text, std::size_t from, std::size_t to) {
    const std::size_t seam = text[0].size();
    const std::size_t cut = std::clamp(seam, from, to);
    return {text[0].substr(std::min(from, seam), cut - from),
            text[1].substr(std::max(cut, seam) - seam, to - cut)};
}

template <bool front> std::size_t Common(TPieces a, TPieces b) {
    if (!front) {
        std::swap(a[0], a[1]);
        std::swap(b[0], b[1]);
    }
    std::size_t common = 0;
    for (std::size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        const std::size_t most = std::min(a[i].size(), b[j].size());
        const std::size_t same = Common<front>(a[i], b[j]);
        common += same;
        if (same < most) break;
        for (std::string_view* const piece : {&a[i], &b[j]})
            front ? piece->remove_prefix(same) : piece->remove_suffix(same);
        if (a[i].empty())
            ++i;
        else if (b[j].empty())
            ++j;
    }
    return common;
}

} // namespace

std::unique_ptr<TMirror> TEditorMirror::For(TFrontEnd& frontEnd, TControl& control) {
    if (&control != &frontEnd.Ide().EditWindow().Editor()) return nullptr;
    return std::make_unique<TEditorMirror>(frontEnd, control);
}

TEditorMirror::TEditorMirror(TFrontEnd& frontEnd, TControl& control)
    : TMirror(frontEnd, control, new TSourceEdit(*this)) {
    QsciScintilla& view = View();
    view.setMarginType(0, QsciScintilla::NumberMargin);
    view.setMarginWidth(1, 0);
    view.SendScintilla(QsciScintilla::SCI_SETMARGINLEFT, 0, 4); // pixels before the text
    view.setIndentationsUseTabs(false);
    view.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view.SendScintilla(QsciScintilla::SCI_SETMULTIPLESELECTION, 0);
    view.SendScintilla(QsciScintilla::SCI_SETVIRTUALSPACEOPTIONS,
                       QsciScintilla::SCVS_RECTANGULARSELECTION |
                           QsciScintilla::SCVS_USERACCESSIBLE);
    // Any row of the text may be the top one.
    view.SendScintilla(QsciScintilla::SCI_SETENDATLASTLINE, 0);
    // The bar at the bottom is there when a line is longer than the window is wide.
    view.setScrollWidth(1);
    view.setScrollWidthTracking(true);
    // The end of a long text is shown before all that stands above it is coloured.
    view.SendScintilla(QsciScintilla::SCI_SETIDLESTYLING, QsciScintilla::SC_IDLESTYLING_ALL);
    view.setAccessibleName("Source");
    // The widget's own commands on letters change lines in ways that nobody asked for.
    for (QsciCommand* const command : view.standardCommands()->commands()) {
        const int key = command->key() & ~Qt::KeyboardModifierMask;
        if (key >= 'A' && key <= 'Z') command->setKey(0);
    }
    connect(&view, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int modification, const char* text, int length) {
                TakeChange(position, modification, text, length);
            });
    // What no event tells: selecting goes on while the mouse rests outside, scroll bars move.
    connect(&view, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int) { Take(); });
    for (QScrollBar* const bar : {view.verticalScrollBar(), view.horizontalScrollBar()})
        connect(bar, &QScrollBar::valueChanged, this, [this] { Take(); });
}

TEditorMirror::~TEditorMirror() = default;

void TEditorMirror::SyncPlace() {
    TControl* const window = Control().Parent();
    QWidget* const holder = window ? FrontEnd().WidgetOf(*window) : nullptr;
    if (!holder || !holder->layout() || Widget()->parentWidget() == holder) return;
    if (QWidget* const tabs = FrontEnd().WidgetOf(FrontEnd().Ide().EditWindow().TabControl()))
        holder->layout()->addWidget(tabs);
    holder->layout()->addWidget(Widget());
}

// --- From the buffer to the widget -------------------------------------------------------------

bool TEditorMirror::Agrees() const {
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    return buffer && FBuffer == buffer && FDocument->Revision == buffer->Text().Revision() &&
           FDocument->State == buffer->View()->State();
}

void TEditorMirror::Follow() {
    if (FFollowing) return;
    if (Agrees()) Take();
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    const TScopedValue following(FFollowing, true);
    const bool another = buffer ? !FDocument || FBuffer != buffer : FDocument != nullptr;
    if (another) ShowBuffer(buffer);
    Widget()->setEnabled(buffer != nullptr);
    if (!buffer) return;
    TSourceView& source = *buffer->View();
    // A script sees the same rows whatever the size of the window.
    if (View().isVisible() && !FrontEnd().Watched())
        source.SetHeight(static_cast<int>(Ask(QsciScintilla::SCI_LINESONSCREEN)));
    const bool moved = ShowText(*buffer, *FDocument) || FDocument->State != source.State();
    if (another || moved) {
        ShowMargin();
        ShowSelection(*buffer);
    }
    ShowPlace(source, *FDocument, moved, another);
    FDocument->State = source.State();
    FSelection = Selection();
}

void TEditorMirror::ShowBuffer(TSourceBuffer* buffer) {
    // Documents of buffers that are closed go.
    std::erase_if(FDocuments, [](const auto& entry) { return !entry.second.Buffer; });
    FBuffer = buffer;
    FDocument = nullptr;
    if (!buffer) {
        View().setDocument(QsciDocument());
        View().setMarginWidth(0, 0); // there are no lines
        return;
    }
    FDocument = &FDocuments[buffer];
    FDocument->Buffer = buffer;
    View().setDocument(FDocument->Document);
    View().setScrollWidth(1); // not that of the file before
    // These belong to the document.
    constexpr int modes[] = {QsciScintilla::SC_EOL_CRLF, QsciScintilla::SC_EOL_LF,
                             QsciScintilla::SC_EOL_CR};
    View().setUtf8(true);
    View().setTabWidth(TabSize);
    View().SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 0ul);
    View().SendScintilla(QsciScintilla::SCI_SETEOLMODE, modes[buffer->Text().LineBreak()]);
    ChooseLexer(*buffer);
}

void TEditorMirror::ChooseLexer(const TSourceBuffer& buffer) {
    static const QStringList cpp = {".cpp", ".c", ".h", ".hpp", ".bpr", ".bpk"};
    const QString name = FromText(buffer.FileName()).toLower();
    const bool isCpp =
        std::any_of(cpp.begin(), cpp.end(), [&](const QString& ext) { return name.endsWith(ext); });
    delete View().lexer();
    QsciLexer* const lexer = isCpp ? static_cast<QsciLexer*>(new QsciLexerCPP(&View()))
                                   : static_cast<QsciLexer*>(new QsciLexerPascal(&View()));
    lexer->setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    const QPalette& palette = View().palette();
    const bool dark = palette.base().color().lightness() < 128;
    lexer->setDefaultPaper(palette.base().color());
    lexer->setPaper(palette.base().color());
    for (int style = 0; style < 128; ++style) {
        lexer->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), style);
        // The lexers' colours are made for a light ground.
        if (dark) {
            const QColor color = lexer->color(style);
            lexer->setColor(QColor::fromHsl(color.hslHue(), color.hslSaturation(),
                                            std::max(200, color.lightness())),
                            style);
        }
    }
    View().setLexer(lexer);
    View().setCaretForegroundColor(palette.text().color());
    View().setMarginsBackgroundColor(palette.window().color());
    View().setMarginsForegroundColor(palette.windowText().color());
}

namespace {

/// Keeps a widget from telling of its changes, as long as it lives.
class TQuiet {
public:
    TQuiet(const QsciScintilla& view, bool quiet)
        : FView(view), FTold(view.SendScintilla(QsciScintilla::SCI_GETMODEVENTMASK)) {
        if (quiet) view.SendScintilla(QsciScintilla::SCI_SETMODEVENTMASK, 0);
    }
    TQuiet(const TQuiet&) = delete;
    TQuiet& operator=(const TQuiet&) = delete;
    ~TQuiet() { FView.SendScintilla(QsciScintilla::SCI_SETMODEVENTMASK, FTold); }

private:
    const QsciScintilla& FView;
    long FTold;
};

/// Keeps a widget from being painted, as long as it lives.
class TUnpainted {
public:
    explicit TUnpainted(QWidget& view) : FView(view) { view.setUpdatesEnabled(false); }
    TUnpainted(const TUnpainted&) = delete;
    TUnpainted& operator=(const TUnpainted&) = delete;
    ~TUnpainted() { FView.setUpdatesEnabled(true); }

private:
    QWidget& FView;
};

} // namespace

/// Replaces the bytes between what both texts begin and end with; false when the text is shown.
/// They are compared only where the buffer has changed since it was shown.
bool TEditorMirror::ShowText(TSourceBuffer& buffer, TDocument& document) {
    if (document.Revision == buffer.Text().Revision()) return false;
    const auto size = static_cast<std::size_t>(Ask(QsciScintilla::SCI_GETLENGTH));
    const auto gap = static_cast<std::size_t>(Ask(QsciScintilla::SCI_GETGAPPOSITION));
    const auto bytes = [&](std::size_t from, std::size_t to) {
        // A pointer that comes as a number: the call that gives pointers would move the gap.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        const auto* const data = reinterpret_cast<const char*>(View().SendScintilla(
            QsciScintilla::SCI_GETRANGEPOINTER, from, static_cast<long>(to - from)));
        return std::string_view(data, to - from);
    };
    const TEditText& text = buffer.Text();
    const TUnchanged known = document.Revision ? text.UnchangedSince(*document.Revision)
                                               : TUnchanged{.Front = 0, .Back = 0};
    const std::size_t most = std::min(size, text.Size());
    std::size_t front = std::min(known.Front, most);
    std::size_t back = std::min(known.Back, most - front);
    const TPieces shown = Between({bytes(0, gap), bytes(gap, size)}, front, size - back);
    const TPieces ours = Between(text.Chunks(), front, text.Size() - back);
    const std::size_t more = Common<true>(shown, ours);
    back += std::min(Common<false>(shown, ours), most - front - back - more);
    front += more;
    // Only screen readers are told of it, by where it is in characters: all before it are counted.
    const TQuiet quiet(View(), !QAccessible::isActive());
    Tell(QsciScintilla::SCI_DELETERANGE, static_cast<long>(front),
         static_cast<long>(size - back - front));
    document.Revision.reset();
    if (Insert(text, front, text.Size() - back)) document.Revision = text.Revision();
    return true;
}

/// Inserts the bytes from..to of the buffer's text, a long piece in slices; false when that is
/// given up. The last slice comes first: so the widget's memory is ready for keys at the start, and
/// is not moved as a whole by the first one.
bool TEditorMirror::Insert(const TEditText& text, std::size_t from, std::size_t to) {
    constexpr std::size_t slice = 2 << 20;
    const bool isLong = to - from > slice;
    std::optional<TUnpainted> unpainted; // the end would be seen as the first lines
    if (isLong) {
        unpainted.emplace(View());
        Tell(QsciScintilla::SCI_ALLOCATE, static_cast<long>(text.Size() + slice));
    }
    for (std::size_t left = to; left > from;) {
        const std::size_t count = std::min(left - from, slice);
        const std::string piece = text.Text(left - count, left);
        View().SendScintilla(QsciScintilla::SCI_SETTARGETRANGE, from, static_cast<long>(from));
        View().SendScintilla(QsciScintilla::SCI_REPLACETARGET, count, piece.data());
        left -= count;
        if (isLong && OnFill && !OnFill(to - left, to - from)) return false;
    }
    return true;
}

/// Makes the margin as wide as the number of the last line.
void TEditorMirror::ShowMargin() {
    const auto digits = QString::number(View().lines()).size();
    View().setMarginWidth(0, QString(std::max<qsizetype>(digits, 3) + 1, '0'));
}

/// The byte offset where the widget has a position, and the columns of virtual space behind it.
std::pair<long, long> TEditorMirror::PlaceOf(const TEditText& text, TTextPos pos) {
    const int length = static_cast<int>(text.LineLength(pos.Row));
    return {static_cast<long>(text.OffsetAt(pos)), std::max(pos.Col - 1 - length, 0)};
}

void TEditorMirror::ShowSelection(const TSourceBuffer& buffer) {
    const TSourceView& source = *buffer.View();
    const TViewState state = source.State();
    TTextPos anchor = state.BlockValid ? state.BlockStart : state.Cursor;
    TTextPos caret = state.Cursor;
    // Whole lines and the like are selected as the text that they are.
    if (source.BlockStyle() == btLine || source.BlockStyle() == btInclusive) {
        const bool atStart = caret < anchor;
        anchor = atStart ? source.BlockEnd() : source.BlockStart();
        caret = atStart ? source.BlockStart() : source.BlockEnd();
    }
    const auto [anchorAt, anchorBeyond] = PlaceOf(buffer.Text(), anchor);
    const auto [caretAt, caretBeyond] = PlaceOf(buffer.Text(), caret);
    if (source.BlockStyle() == btColumn) {
        Tell(QsciScintilla::SCI_SETRECTANGULARSELECTIONANCHOR, anchorAt);
        Tell(QsciScintilla::SCI_SETRECTANGULARSELECTIONANCHORVIRTUALSPACE, anchorBeyond);
        Tell(QsciScintilla::SCI_SETRECTANGULARSELECTIONCARET, caretAt);
        Tell(QsciScintilla::SCI_SETRECTANGULARSELECTIONCARETVIRTUALSPACE, caretBeyond);
        ShowColumns(buffer);
        return;
    }
    Tell(QsciScintilla::SCI_SETSEL, anchorAt, caretAt);
    Tell(QsciScintilla::SCI_SETSELECTIONNANCHORVIRTUALSPACE, 0, anchorBeyond);
    Tell(QsciScintilla::SCI_SETSELECTIONNCARETVIRTUALSPACE, 0, caretBeyond);
}

/// Has the widget select in each row just what the block is there. The widget goes by pixels, which
/// differ from places where a byte is shown by its number, or a character is wide.
void TEditorMirror::ShowColumns(const TSourceBuffer& buffer) {
    const TSourceView& source = *buffer.View();
    const TColumnBlock columns = source.ColumnBlock();
    const long rows = columns.LastRow() - columns.FirstRow() + 1;
    if (Ask(QsciScintilla::SCI_GETSELECTIONS) != rows) return;
    // The widget counts its rows from the anchor.
    const TViewState state = source.State();
    const int step = state.BlockStart.Row > state.Cursor.Row ? -1 : 1;
    const bool caretLeft =
        SeenAt(buffer.Text(), state.Cursor) < SeenAt(buffer.Text(), state.BlockStart);
    const auto show = [&](long index, TTextPos pos, unsigned at, unsigned beyond) {
        const auto [place, space] = PlaceOf(buffer.Text(), pos);
        Tell(at, index, place);
        Tell(beyond, index, space);
    };
    for (long i = 0; i < rows; ++i) {
        const int row = state.BlockStart.Row + step * static_cast<int>(i);
        const TTextPos left = columns.From(row), right = columns.To(row);
        show(i, caretLeft ? right : left, QsciScintilla::SCI_SETSELECTIONNANCHOR,
             QsciScintilla::SCI_SETSELECTIONNANCHORVIRTUALSPACE);
        show(i, caretLeft ? left : right, QsciScintilla::SCI_SETSELECTIONNCARET,
             QsciScintilla::SCI_SETSELECTIONNCARETVIRTUALSPACE);
    }
    // The widget does so with other blocks only, and one that it does not own is partly grey.
    if (QApplication::clipboard()->supportsSelection() && source.HasBlock())
        QApplication::clipboard()->setText(FromText(source.BlockText()), QClipboard::Selection);
}

int TEditorMirror::ColumnWidth() const {
    return std::max(static_cast<int>(View().SendScintilla(QsciScintilla::SCI_TEXTWIDTH,
                                                          QsciScintilla::STYLE_DEFAULT, " ")),
                    1);
}

/// Shows the rows that the view says. The columns are the widget's to say, which keeps the cursor
/// in sight, unless they were asked for.
void TEditorMirror::ShowPlace(TSourceView& source, TDocument& document, bool moved, bool another) {
    if (another || source.LeftColumn() != document.LeftColumn)
        Tell(QsciScintilla::SCI_SETXOFFSET, (source.LeftColumn() - 1L) * ColumnWidth());
    if (moved) Tell(QsciScintilla::SCI_SCROLLCARET);
    if (Ask(QsciScintilla::SCI_GETFIRSTVISIBLELINE) != source.TopRow() - 1)
        Tell(QsciScintilla::SCI_SETFIRSTVISIBLELINE, source.TopRow() - 1);
    TakePlace(source, document);
}

// --- From the widget to the buffer -------------------------------------------------------------

void TEditorMirror::Take() {
    if (FFollowing || !Agrees()) return;
    TSourceBuffer& buffer = *FrontEnd().Ide().CurrentBuffer();
    TSourceView& source = *buffer.View();
    if (Selection() != FSelection) TakeSelection(buffer);
    // Where the view was asked to scroll, that is to be shown.
    if (source.TopRow() == FDocument->TopRow && source.LeftColumn() == FDocument->LeftColumn)
        TakePlace(source, *FDocument);
}

void TEditorMirror::TakeChange(int position, int modification, const char* text, int length) {
    constexpr int inserted = QsciScintilla::SC_MOD_INSERTTEXT;
    constexpr int deleted = QsciScintilla::SC_MOD_DELETETEXT;
    if (FFollowing || (modification & (inserted | deleted)) == 0 || !FDocument) return;
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    const bool known =
        buffer && FBuffer == buffer && FDocument->Revision == buffer->Text().Revision();
    FDocument->Revision.reset(); // what is shown is to be looked at, unless all goes well
    if (!known) return FrontEnd().StateChanged(Control());
    const auto from = static_cast<std::size_t>(position);
    const auto size = static_cast<std::size_t>(length);
    const bool isInsert = (modification & inserted) != 0;
    const bool taken = FrontEnd().Ide().RunCommand([&] {
        const TSourceBuffer::TEditScope scope(*buffer);
        const std::string_view bytes = isInsert ? std::string_view(text, size) : "";
        const std::size_t end = buffer->Text().Replace(from, isInsert ? from : from + size, bytes);
        buffer->View()->MoveTo(buffer->Text().PosAt(end));
    });
    if (!taken) return FrontEnd().StateChanged(Control());
    FDocument->Revision = buffer->Text().Revision();
    FDocument->State = buffer->View()->State();
    FSelection.reset();
    ShowMargin();
}

TEditorMirror::TSelection TEditorMirror::Selection() const {
    if (Ask(QsciScintilla::SCI_SELECTIONISRECTANGLE) != 0)
        return {.Column = true,
                .Anchor = Ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHOR),
                .AnchorBeyond = Ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHORVIRTUALSPACE),
                .Caret = Ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARET),
                .CaretBeyond = Ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARETVIRTUALSPACE)};
    return {.Column = false,
            .Anchor = Ask(QsciScintilla::SCI_GETANCHOR),
            .AnchorBeyond = Ask(QsciScintilla::SCI_GETSELECTIONNANCHORVIRTUALSPACE),
            .Caret = Ask(QsciScintilla::SCI_GETCURRENTPOS),
            .CaretBeyond = Ask(QsciScintilla::SCI_GETSELECTIONNCARETVIRTUALSPACE)};
}

void TEditorMirror::TakeSelection(TSourceBuffer& buffer) {
    const TSelection selection = Selection();
    const auto pos = [&](long offset, long beyond) {
        TTextPos at = buffer.Text().PosAt(static_cast<std::size_t>(offset));
        at.Col += static_cast<int>(beyond);
        return at;
    };
    const TTextPos anchor = pos(selection.Anchor, selection.AnchorBeyond);
    const TTextPos caret = pos(selection.Caret, selection.CaretBeyond);
    TSourceView& source = *buffer.View();
    source.MoveTo(anchor);
    if (anchor != caret) source.ExtendTo(caret, selection.Column ? btColumn : btNonInclusive);
    FDocument->State = source.State();
    FSelection = selection;
    if (source.BlockStyle() != btColumn) return;
    const TScopedValue following(FFollowing, true);
    ShowColumns(buffer);
}

void TEditorMirror::TakePlace(TSourceView& source, TDocument& document) const {
    const int top = static_cast<int>(Ask(QsciScintilla::SCI_GETFIRSTVISIBLELINE)) + 1;
    const int left = static_cast<int>(Ask(QsciScintilla::SCI_GETXOFFSET)) / ColumnWidth() + 1;
    source.Scroll(top - source.TopRow(), left - source.LeftColumn());
    document.TopRow = source.TopRow();
    document.LeftColumn = source.LeftColumn();
}

// --- What the widget hands on ------------------------------------------------------------------

bool TEditorMirror::TakeKey(const QKeyEvent& event) {
    Follow();
    TSourceView* const view = FrontEnd().Ide().CurrentView();
    if (!view) return true;
    if (IsTyped(event)) {
        Type(event.text());
        return true;
    }
    const TShortCut key = ShortCutOf(event);
    bool taken = false;
    // A key that is no command, as Shift alone, does not end what is typed in one go.
    if (key != 0) FrontEnd().Ide().RunCommand([&] { taken = PressEditorKey(*view, key); });
    Follow();
    // The widget would type the character of a hot key that is nobody's.
    return taken || key == 0 || HasCharacter(event);
}

void TEditorMirror::Type(const QString& text) {
    if (text.isEmpty()) return;
    Follow();
    TSourceView* const view = FrontEnd().Ide().CurrentView();
    if (!view) return;
    FrontEnd().Ide().RunCommand([&] { view->TypeText(ToText(text)); }, gkTyping);
    Follow();
}

void TEditorMirror::AsOne(const std::function<void()>& action) {
    Follow();
    FrontEnd().Ide().RunCommand([&] {
        action();
        Take();
    });
    Follow();
}

void TEditorMirror::PasteAt(QPoint place, const QString& text) {
    Follow();
    TSourceView* const view = FrontEnd().Ide().CurrentView();
    if (!view || text.isEmpty()) return;
    const long offset = View().SendScintilla(QsciScintilla::SCI_POSITIONFROMPOINT,
                                             static_cast<unsigned long>(place.x()), place.y());
    FrontEnd().Ide().RunCommand([&] {
        view->MoveTo(view->Buffer().Text().PosAt(static_cast<std::size_t>(offset)));
        view->Put(ToText(text));
        view->ScrollIntoView();
    });
    Follow();
}

void TEditorMirror::ShowMenu(QPoint place) {
    auto* const items =
        dynamic_cast<TMenuItem*>(FrontEnd().Ide().MainForm().FindComponent("EditMenu"));
    if (!items) return;
    auto* const menu = new QMenu(Widget());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    FrontEnd().FillMenu(*menu, *items);
    menu->popup(place);
}

void TEditorMirror::Recolour() {
    if (const TSourceBuffer* const buffer = FBuffer.Get()) ChooseLexer(*buffer);
}

void TEditorMirror::Focused() {
    const TEditWindow& window = FrontEnd().Ide().EditWindow();
    if (!window.EditorHasFocus() && window.Visible()) Control().SetFocus();
}

} // namespace tarn
