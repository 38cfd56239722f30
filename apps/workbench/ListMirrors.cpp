// Mirrors of lists, trees, tabs and grids.

#include "Mirrors.h"
#include "QtKeys.h"
#include "TFrontEnd.h"

#include <climits>

namespace tarn {

// --- Combo boxes ------------------------------------------------------------------------------

TComboBoxMirror::TComboBoxMirror(TFrontEnd& frontEnd, TComboBox& box)
    : TMirrorOf(frontEnd, box, new QComboBox) {
    connect(&View(), &QComboBox::activated, this, [this](int index) {
        FrontEnd().AsUser([&] { Self().Choose(index); });
        Sync();
    });
}

void TComboBoxMirror::SyncState() {
    QComboBox& view = View();
    TComboBox& box = Self();
    const bool editable = box.Style() == csDropDown;
    if (view.isEditable() != editable) {
        view.setEditable(editable);
        if (editable) {
            // The text is what was typed: nothing is added to it, nor does it become a line.
            view.setInsertPolicy(QComboBox::NoInsert);
            view.setCompleter(nullptr);
            connect(view.lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
                FrontEnd().AsUser([&] { Self().TypeText(ToText(text)); });
            });
        }
    }
    QStringList lines;
    for (int i = 0; i < box.Items().Count(); ++i) lines << FromText(box.Items()[i]);
    QStringList shown;
    for (int i = 0; i < view.count(); ++i) shown << view.itemText(i);
    if (shown != lines) {
        view.clear();
        view.addItems(lines);
    }
    const int caret = editable ? view.lineEdit()->cursorPosition() : 0;
    const QString text = FromText(box.Text());
    const bool same = editable && view.currentText() == text;
    if (view.currentIndex() != box.ItemIndex()) view.setCurrentIndex(box.ItemIndex());
    if (!editable) return;
    if (view.currentText() != text) view.setEditText(text);
    if (same) view.lineEdit()->setCursorPosition(caret);
}

// --- Lists ------------------------------------------------------------------------------------

TListBoxMirror::TListBoxMirror(TFrontEnd& frontEnd, TListBox& list)
    : TMirrorOf(frontEnd, list, new QListWidget) {
    View().setSelectionMode(QAbstractItemView::ExtendedSelection);
    View().setUniformItemSizes(true);
    View().installEventFilter(this);
    View().viewport()->installEventFilter(this);
}

void TListBoxMirror::SyncState() {
    QListWidget& view = View();
    TListBox& list = Self();
    const int count = list.Count();
    while (view.count() > count) delete view.takeItem(view.count() - 1);
    while (view.count() < count) view.addItem(QString());
    for (int i = 0; i < count; ++i) {
        QListWidgetItem& item = *view.item(i);
        const QString text = FromText(list.Items()[i]).replace('\t', "    ");
        if (item.text() != text) item.setText(text);
        if (item.isSelected() != list.Selected(i)) item.setSelected(list.Selected(i));
        DecorateItem(item, i);
    }
    if (list.ItemIndex() >= 0) {
        view.setCurrentRow(list.ItemIndex(), QItemSelectionModel::NoUpdate);
        view.scrollToItem(view.item(list.ItemIndex()));
    }
}

int TListBoxMirror::LineAt(QPoint place) const {
    return View().indexAt(place).row();
}

namespace {

TShiftState ShiftOf(Qt::KeyboardModifiers modifiers) {
    TShiftState shift;
    if (modifiers & Qt::ShiftModifier) shift.Include(ssShift);
    if (modifiers & Qt::ControlModifier) shift.Include(ssCtrl);
    if (modifiers & Qt::AltModifier) shift.Include(ssAlt);
    return shift;
}

} // namespace

bool TListBoxMirror::Mouse(QMouseEvent& event) {
    const QPoint place = event.position().toPoint();
    const int line = LineAt(place);
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        View().setFocus();
        if (event.button() != Qt::LeftButton || line < 0) return true;
        FDragFrom = Self().DragMode == dmAutomatic ? line : -1;
        FPressed = place;
        // A line of several that are selected is clicked when it was not dragged.
        FClicksLater = FDragFrom >= 0 && Self().Selected(line) && Self().SelCount() > 1;
        if (FClicksLater) return true;
        FrontEnd().AsUser([&] {
            if (!ClickedAt(line, place)) Self().ClickItem(line, ShiftOf(event.modifiers()));
        });
        return true;
    case QEvent::MouseButtonDblClick:
        if (line >= 0) FrontEnd().AsUser([&] { Self().DblClickItem(line); });
        return true;
    case QEvent::MouseButtonRelease:
        if (const int from = std::exchange(FDragFrom, -1); from >= 0)
            Drop(from, place, event.modifiers());
        return true;
    case QEvent::MouseMove:
        return true;
    default:
        return false;
    }
}

void TListBoxMirror::Click(int line, Qt::KeyboardModifiers modifiers) {
    FrontEnd().AsUser([&] { Self().ClickItem(line, ShiftOf(modifiers)); });
}

/// The button is let go: a line was clicked, or dragged, which ends nowhere outside the list.
void TListBoxMirror::Drop(int from, QPoint place, Qt::KeyboardModifiers modifiers) {
    const bool moved = (place - FPressed).manhattanLength() >= QApplication::startDragDistance();
    const int line = LineAt(place);
    if (!moved && FClicksLater)
        Click(from, modifiers);
    else if (moved && line != from && View().viewport()->rect().contains(place))
        FrontEnd().AsUser([&] { Self().DragItems(from, line < 0 ? Self().Count() : line); });
}

namespace {

/// The line to which a key goes, which may be outside the list; INT_MIN for a key of another use.
int LineOf(int key, int current, int last, int page) {
    switch (key) {
    case Qt::Key_Up:
        return current - 1;
    case Qt::Key_Down:
        return current + 1;
    case Qt::Key_PageUp:
        return current - page;
    case Qt::Key_PageDown:
        return current + page;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return INT_MIN;
    }
}

} // namespace

/// The next line that begins with what was typed.
bool TListBoxMirror::Search(const QKeyEvent& event) {
    if (!IsTyped(event)) return false;
    const int count = Self().Count();
    for (int i = 1; i <= count; ++i) {
        const int line = (Self().ItemIndex() + i) % count;
        if (!View().item(line)->text().startsWith(event.text(), Qt::CaseInsensitive)) continue;
        Click(line, {});
        break;
    }
    return true;
}

/// The widget itself gets no key but those that leave it: what it selects is not selected.
bool TListBoxMirror::Key(QKeyEvent& event) {
    const int current = Self().ItemIndex();
    const int last = Self().Count() - 1;
    if (event.key() == Qt::Key_Space) {
        FrontEnd().AsUser([&] {
            if (current >= 0 && !ClickedAt(current, QPoint(0, 0)))
                Self().ClickItem(current, ShiftOf(event.modifiers()));
        });
        return true;
    }
    if (event.matches(QKeySequence::SelectAll)) {
        FrontEnd().AsUser([&] { Self().SelectAll(); });
        return true;
    }
    const int page =
        std::max(View().viewport()->height() / std::max(View().sizeHintForRow(0), 1), 1);
    if (const int line = LineOf(event.key(), current, last, page); line != INT_MIN) {
        if (last >= 0) Click(std::clamp(line, 0, last), event.modifiers());
        return true;
    }
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) return false;
    if (!Search(event)) event.ignore();
    return true;
}

bool TListBoxMirror::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        return object != &View() && Mouse(static_cast<QMouseEvent&>(*event));
    case QEvent::KeyPress:
        return object == &View() && Key(static_cast<QKeyEvent&>(*event));
    default:
        return false;
    }
}

void TCheckListMirror::DecorateItem(QListWidgetItem& item, int index) {
    item.setFlags(item.flags() | Qt::ItemIsUserCheckable);
    const bool checked = static_cast<TCheckListBox&>(Self()).Checked(index);
    item.setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

bool TCheckListMirror::ClickedAt(int line, QPoint place) {
    constexpr int boxWidth = 22;
    return place.x() < boxWidth && static_cast<TCheckListBox&>(Self()).ClickCheck(line);
}

// --- The tree ---------------------------------------------------------------------------------

TTreeMirror::TTreeMirror(TFrontEnd& frontEnd, TTreeView& tree)
    : TMirrorOf(frontEnd, tree, new QTreeWidget) {
    View().setHeaderHidden(true);
    View().setExpandsOnDoubleClick(false);
    const auto nodeOf = [](QTreeWidgetItem* item) {
        return static_cast<TTreeNode*>(item->data(0, Qt::UserRole).value<void*>());
    };
    connect(&View(), &QTreeWidget::currentItemChanged, this,
            [this, nodeOf](QTreeWidgetItem* item, QTreeWidgetItem*) {
                if (Syncing() || !item) return;
                FrontEnd().AsUser([&] { Self().ClickNode(*nodeOf(item)); });
                // A refused change: the selection goes back when this event is over.
                QMetaObject::invokeMethod(
                    this, [this] { Sync(); }, Qt::QueuedConnection);
            });
    connect(&View(), &QTreeWidget::itemDoubleClicked, this, [this, nodeOf](QTreeWidgetItem* item) {
        FrontEnd().AsUser([&] { Self().DblClickNode(*nodeOf(item)); });
    });
    connect(&View(), &QTreeWidget::itemExpanded, this, [this, nodeOf](QTreeWidgetItem* item) {
        if (!Syncing()) FrontEnd().AsUser([&] { nodeOf(item)->Expand(false); });
    });
    connect(&View(), &QTreeWidget::itemCollapsed, this, [this, nodeOf](QTreeWidgetItem* item) {
        if (!Syncing()) FrontEnd().AsUser([&] { nodeOf(item)->Collapse(false); });
    });
}

/// Whether the items are those of the nodes, in their order.
bool TTreeMirror::IsCurrent() const {
    if (FItems.size() != static_cast<std::size_t>(Self().Items().Count())) return false;
    QTreeWidgetItemIterator item(&View());
    for (TTreeNode* node = Self().Items().GetFirstNode(); node; node = node->GetNext(), ++item) {
        if (!*item || (*item)->data(0, Qt::UserRole).value<void*>() != node) return false;
        QTreeWidgetItem* const above = (*item)->parent();
        void* const parent = above ? above->data(0, Qt::UserRole).value<void*>() : nullptr;
        if (parent != node->Parent()) return false;
    }
    return true;
}

void TTreeMirror::Rebuild() {
    View().clear();
    FItems.clear();
    for (TTreeNode* node = Self().Items().GetFirstNode(); node; node = node->GetNext()) {
        auto* const item = new QTreeWidgetItem;
        item->setData(0, Qt::UserRole, QVariant::fromValue(static_cast<void*>(node)));
        if (node->Parent())
            FItems.at(node->Parent())->addChild(item);
        else
            View().addTopLevelItem(item);
        FItems[node] = item;
    }
}

void TTreeMirror::SyncState() {
    if (!IsCurrent()) Rebuild();
    for (const auto& [node, item] : FItems) {
        const QString text = FromText(node->Text());
        if (item->text(0) != text) item->setText(0, text);
        if (item->isExpanded() != node->Expanded()) item->setExpanded(node->Expanded());
    }
    TTreeNode* const selected = Self().Selected();
    View().setCurrentItem(selected ? FItems.at(selected) : nullptr);
}

// --- Tabs and grids ---------------------------------------------------------------------------

TTabsMirror::TTabsMirror(TFrontEnd& frontEnd, TTabControl& tabs)
    : TMirrorOf(frontEnd, tabs, new QTabBar) {
    View().setExpanding(false);
    View().setFocusPolicy(Qt::NoFocus);
    connect(&View(), &QTabBar::currentChanged, this, [this](int index) {
        if (Syncing() || index < 0) return;
        FrontEnd().AsUser([&] {
            Self().SetTabIndex(index);
            if (const TNotifyEvent handler = Self().OnChange) handler(&Self());
        });
    });
}

void TTabsMirror::SyncState() {
    QTabBar& view = View();
    const TStrings& tabs = Self().Tabs();
    while (view.count() > tabs.Count()) view.removeTab(view.count() - 1);
    while (view.count() < tabs.Count()) view.addTab(QString());
    for (int i = 0; i < tabs.Count(); ++i) view.setTabText(i, FromText(tabs[i]));
    view.setCurrentIndex(Self().TabIndex());
}

namespace {

/// Gives each character that is typed into a cell to the cell at once: a click on a tool button,
/// which takes no focus, does not end the typing.
class TCellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* const editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto* const line = qobject_cast<QLineEdit*>(editor))
            connect(line, &QLineEdit::textEdited, this,
                    [this, line] { emit const_cast<TCellDelegate*>(this)->commitData(line); });
        return editor;
    }
    /// The caret stays where it is when the cell has what the editor shows.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        auto* const line = qobject_cast<QLineEdit*>(editor);
        if (!line || line->text() != index.data(Qt::EditRole).toString())
            QStyledItemDelegate::setEditorData(editor, index);
    }
};

} // namespace

TGridMirror::TGridMirror(TFrontEnd& frontEnd, TStringGrid& grid)
    : TMirrorOf(frontEnd, grid, new QTableWidget) {
    View().setItemDelegate(new TCellDelegate(&View()));
    View().setSelectionBehavior(QAbstractItemView::SelectRows);
    View().verticalHeader()->hide();
    View().horizontalHeader()->setStretchLastSection(true);
    connect(&View(), &QTableWidget::currentCellChanged, this, [this](int row) {
        if (!Syncing() && row >= 0) FrontEnd().AsUser([&] { Self().SetRow(row + 1); });
    });
    connect(&View(), &QTableWidget::cellChanged, this, [this](int row, int col) {
        if (Syncing()) return;
        const std::string text = ToText(View().item(row, col)->text());
        FrontEnd().AsUser([&] { Self().SetCell(col, row + 1, text); });
    });
}

void TGridMirror::SyncState() {
    const TStringGrid& grid = Self();
    View().setColumnCount(grid.ColCount());
    View().setRowCount(grid.RowCount() - 1);
    QStringList headings;
    for (int col = 0; col < grid.ColCount(); ++col) headings << FromText(grid.Cell(col, 0));
    View().setHorizontalHeaderLabels(headings);
    for (int row = 1; row < grid.RowCount(); ++row)
        for (int col = 0; col < grid.ColCount(); ++col) {
            QTableWidgetItem* item = View().item(row - 1, col);
            if (!item) View().setItem(row - 1, col, item = new QTableWidgetItem);
            const QString text = FromText(grid.Cell(col, row));
            if (item->text() != text) item->setText(text);
        }
    if (grid.Row() > 0 && View().currentRow() != grid.Row() - 1)
        View().setCurrentCell(grid.Row() - 1, std::max(View().currentColumn(), 0));
}

} // namespace tarn
