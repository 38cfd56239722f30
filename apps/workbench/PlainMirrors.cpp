// Mirrors of labels, buttons and pictures.

#include "Mirrors.h"
#include "TFrontEnd.h"

namespace tarn {

// --- Labels -----------------------------------------------------------------------------------

TLabelMirror::TLabelMirror(TFrontEnd& frontEnd, TLabel& label)
    : TMirrorOf(frontEnd, label, new QLabel) {
    View().setTextFormat(Qt::PlainText);
    View().installEventFilter(this);
}

void TLabelMirror::SyncState() {
    const auto* const ellipsis = dynamic_cast<const TEllipsisLabel*>(&Self());
    View().setText(FromText(ellipsis ? ellipsis->ShownText() : Self().Caption()));
    if (ellipsis && View().toolTip().isEmpty()) View().setToolTip(FromText(Self().Caption()));
    const Qt::Alignment alignment[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
    View().setAlignment(alignment[Self().Alignment()] | Qt::AlignTop);
    if (Self().HasFont() && Self().Font().Color() == clNavy) {
        // Navy on a dark ground cannot be read: the theme's link colour stands for it there.
        const bool dark = View().palette().window().color().lightness() < 128;
        View().setStyleSheet(dark ? QString("color: palette(link)") : QString("color: navy"));
    }
    TControl* const buddy = Self().FocusControl();
    QWidget* const widget = buddy ? FrontEnd().WidgetOf(*buddy) : nullptr;
    if (!widget) return;
    QString name = View().text().simplified();
    if (name.endsWith(" :")) name.chop(2);
    widget->setAccessibleName(name);
}

bool TLabelMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::MouseButtonRelease) return false;
    FrontEnd().AsUser([&] { Self().Click(); });
    return true;
}

// --- Buttons ----------------------------------------------------------------------------------

TButtonMirror::TButtonMirror(TFrontEnd& frontEnd, TButton& button)
    : TMirrorOf(frontEnd, button, new QPushButton) {
    connect(&View(), &QPushButton::clicked, this,
            [this] { FrontEnd().AsUser([&] { Self().Click(); }); });
}

void TButtonMirror::SyncState() {
    View().setText(FromText(Self().Caption()));
    View().setDefault(Self().Default());
}

TCheckBoxMirror::TCheckBoxMirror(TFrontEnd& frontEnd, TCheckBox& box)
    : TMirrorOf(frontEnd, box, new QCheckBox) {
    connect(&View(), &QCheckBox::clicked, this, [this] {
        FrontEnd().AsUser([&] { Self().Click(); });
        Sync(); // the box shows what the control says
    });
}

/// A box without a caption is as wide as this desktop makes boxes.
void TCheckBoxMirror::SyncPlace() {
    TMirrorOf::SyncPlace();
    if (Self().Caption().empty())
        View().resize(std::max(View().width(), View().sizeHint().width()), View().height());
}

void TCheckBoxMirror::SyncState() {
    View().setText(FromText(Self().Caption()));
    View().setChecked(Self().Checked());
}

namespace {

struct TIconRow {
    std::string_view Action;
    QStyle::StandardPixmap Icon;
};

/// The system's pictures of commands that have them everywhere.
constexpr TIconRow IconRows[] = {
    {"acExit", QStyle::SP_DialogCloseButton},
    {"acLoad", QStyle::SP_DialogOpenButton},
    {"acSave", QStyle::SP_DialogSaveButton},
    {"acSaveAs", QStyle::SP_DriveFDIcon},
    {"acUndo", QStyle::SP_ArrowBack},
    {"acAddNode", QStyle::SP_FileDialogNewFolder},
    {"acDeleteNode", QStyle::SP_TrashIcon},
    {"acMoveNodeUp", QStyle::SP_ArrowUp},
    {"acMoveNodeDown", QStyle::SP_ArrowDown},
    {"acExpandNode", QStyle::SP_TitleBarUnshadeButton},
    {"acCollapseNode", QStyle::SP_TitleBarShadeButton},
};

/// The mean lightness of what is painted of a picture, 0 to 255; that of black when nothing is.
int LightnessOf(const QImage& image) {
    int sum = 0, weight = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            sum += color.lightness() * color.alpha();
            weight += color.alpha();
        }
    return weight == 0 ? 0 : sum / weight;
}

/// The picture in the colour of texts where nobody would see it on a dark ground.
QIcon Visible(const QIcon& icon, const QWidget& widget) {
    constexpr int size = 16; // pixels
    constexpr int dark = 80;
    const QPalette& palette = widget.palette();
    if (palette.window().color().lightness() > 128) return icon;
    QPixmap pixmap = icon.pixmap(QSize(size, size), widget.devicePixelRatioF());
    if (LightnessOf(pixmap.toImage()) > dark) return icon;
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), palette.buttonText());
    return pixmap;
}

QIcon IconOf(const TToolButton& button, const QWidget& widget) {
    const TAction* const action = button.Action();
    for (const TIconRow& row : IconRows)
        if (action && action->Name() == row.Action)
            return Visible(widget.style()->standardIcon(row.Icon), widget);
    return {};
}

} // namespace

TToolButtonMirror::TToolButtonMirror(TFrontEnd& frontEnd, TToolButton& button)
    : TMirrorOf(frontEnd, button, new QToolButton) {
    View().setAutoRaise(true);
    connect(&View(), &QToolButton::clicked, this,
            [this] { FrontEnd().AsUser([&] { Self().Click(); }); });
}

void TToolButtonMirror::MakeMenu() {
    auto* const menu = new QMenu(&View());
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        TPopupMenu* const items = Self().DropdownMenu.Get();
        if (!items) return;
        items->PopupComponent = &Self();
        if (items->OnPopup) FrontEnd().AsUser([&] { items->OnPopup(items); });
        FrontEnd().FillMenu(*menu, *items->Items());
    });
    View().setMenu(menu);
    View().setPopupMode(QToolButton::MenuButtonPopup);
}

void TToolButtonMirror::SyncState() {
    const TToolButton& button = Self();
    if (button.Style() == tbsDropDown && !View().menu()) MakeMenu();
    const auto* const bar = dynamic_cast<const TToolBar*>(button.Parent());
    View().setEnabled(button.Enabled() && !button.IsSeparator());
    const QString caption = FromText(StripHotkey(button.Caption()));
    View().setAccessibleName(caption);
    const QIcon icon = IconOf(button, View());
    const bool captions = bar && bar->ShowCaptions();
    View().setIcon(captions ? QIcon() : icon);
    View().setText(captions || icon.isNull() ? caption : QString());
    View().setCheckable(button.Style() == tbsCheck || button.Down());
    View().setChecked(button.Down());
    const TAction* const action = button.Action();
    QString tip = button.Hint().empty() ? caption : FromText(button.Hint());
    if (action && action->ShortCut() != 0)
        tip += " (" + FromText(ShortCutToText(action->ShortCut())) + ")";
    View().setToolTip(tip);
    if (button.IsSeparator()) View().setVisible(false);
}

// --- The rest ---------------------------------------------------------------------------------

TStatusBarMirror::TStatusBarMirror(TFrontEnd& frontEnd, TStatusBar& bar)
    : TMirrorOf(frontEnd, bar, new QLabel) {
    View().setIndent(4);
}

TImageMirror::TImageMirror(TFrontEnd& frontEnd, TImage& image)
    : TMirrorOf(frontEnd, image, new QLabel) {
    View().setFrameStyle(QFrame::Box | QFrame::Plain);
    View().setFocusPolicy(Qt::StrongFocus);
    View().installEventFilter(this);
}

void TImageMirror::SyncState() {
    const TGraphic* const graphic = Self().Picture().Graphic();
    QPixmap picture;
    if (graphic)
        picture.loadFromData(reinterpret_cast<const uchar*>(graphic->Bytes().data()),
                             static_cast<uint>(graphic->Bytes().size()));
    View().setScaledContents(Self().Stretch());
    View().setPixmap(picture);
}

bool TImageMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        FrontEnd().AsUser([&] { Self().DblClick(); });
        return true;
    }
    return false;
}

} // namespace tarn
