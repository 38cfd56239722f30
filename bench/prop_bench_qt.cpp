// The yardstick of the property benchmark: the same class with Qt's object properties.

#include "prop_bench.h"

#include <QMetaProperty>
#include <QObject>
#include <QVariant>

#include <array>
#include <memory>
#include <vector>

class TQtBase : public QObject {
    Q_OBJECT
    Q_PROPERTY(int Align MEMBER Value)
    Q_PROPERTY(int Anchors MEMBER Value)
    Q_PROPERTY(int Left MEMBER Value)
    Q_PROPERTY(int Top MEMBER Value)
    Q_PROPERTY(int Height MEMBER Value)
    Q_PROPERTY(int Enabled MEMBER Value)
    Q_PROPERTY(int Visible MEMBER Value)
    Q_PROPERTY(int Hint MEMBER Value)
    Q_PROPERTY(int ShowHint MEMBER Value)
    Q_PROPERTY(int Font MEMBER Value)
    Q_PROPERTY(int Color MEMBER Value)
    Q_PROPERTY(int Cursor MEMBER Value)
    Q_PROPERTY(int TabOrder MEMBER Value)
    Q_PROPERTY(int TabStop MEMBER Value)
    Q_PROPERTY(int PopupMenu MEMBER Value)
    Q_PROPERTY(int DragMode MEMBER Value)
    Q_PROPERTY(int DragKind MEMBER Value)
    Q_PROPERTY(int DragCursor MEMBER Value)
    Q_PROPERTY(int HelpContext MEMBER Value)
    Q_PROPERTY(int ParentFont MEMBER Value)
    Q_PROPERTY(int ParentColor MEMBER Value)
    Q_PROPERTY(int ParentShowHint MEMBER Value)
    Q_PROPERTY(int BiDiMode MEMBER Value)
    Q_PROPERTY(int Constraints MEMBER Value)
    Q_PROPERTY(int BorderStyle MEMBER Value)
    Q_PROPERTY(int BorderWidth MEMBER Value)
    Q_PROPERTY(int AutoSize MEMBER Value)
    Q_PROPERTY(int AutoScroll MEMBER Value)
    Q_PROPERTY(int Alignment MEMBER Value)
    Q_PROPERTY(int Layout MEMBER Value)
    Q_PROPERTY(int WordWrap MEMBER Value)
    Q_PROPERTY(int ReadOnly MEMBER Value)
    Q_PROPERTY(int MaxLength MEMBER Value)
    Q_PROPERTY(int HideSelection MEMBER Value)
    Q_PROPERTY(int WantTabs MEMBER Value)
    Q_PROPERTY(int WantReturns MEMBER Value)
public:
    int Value = 0;
};

class TQtNode : public TQtBase {
    Q_OBJECT
    Q_PROPERTY(QObject* Child MEMBER Child)
    Q_PROPERTY(int Width MEMBER Width)
    Q_PROPERTY(QString Caption MEMBER Caption)
    Q_PROPERTY(TShade Shade MEMBER Shade)
public:
    enum TShade { shLight, shMiddle, shDark };
    Q_ENUM(TShade)

    QObject* Child = nullptr;
    int Width = 640;
    QString Caption = "Orchard";
    TShade Shade = shMiddle;
};

namespace tarn {
namespace {

struct TChain {
    TChain() {
        Root.Child = &Middle;
        Middle.Child = &Leaf;
    }
    TQtNode Root, Middle, Leaf;
};

struct TRow {
    const char* Name;
    std::array<QVariant, 2> Values, Texts;
};
const std::array<TRow, 3>& Rows() {
    const auto text = [](const char* value) { return QVariant(QString(value)); };
    static const std::array<TRow, 3> rows{{
        {"Width", {640, 480}, {text("640"), text("480")}},
        {"Caption", {text("Orchard"), text("Garden")}, {text("Orchard"), text("Garden")}},
        {"Shade", {TQtNode::shLight, TQtNode::shDark}, {text("shLight"), text("shDark")}},
    }};
    return rows;
}

QObject* Owner(QObject* object, bool path) {
    for (int i = 0; path && i < 2; ++i) object = object->property("Child").value<QObject*>();
    return object;
}

std::size_t Once(QObject* object, const TRow& row, const TPropAccess& access, std::size_t i) {
    QObject* const owner = Owner(object, access.Path);
    if (access.Write)
        return owner->setProperty(row.Name, (access.Text ? row.Texts : row.Values)[i % 2]) ? i : 0;
    const QVariant value = owner->property(row.Name);
    return static_cast<std::size_t>(access.Text ? value.toString().size() : value.typeId());
}

} // namespace

TPropRun QtAccess(const TPropAccess& access) {
    return [access, chain = std::make_shared<TChain>()] {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < PropOperations; ++i)
            sum += Once(&chain->Root, Rows()[access.Value], access, i);
        return sum;
    };
}

TPropRun QtLookUp() {
    const QMetaObject& meta = TQtNode::staticMetaObject;
    std::vector<const char*> names;
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i)
        names.push_back(meta.property(i).name());
    return [&meta, names] {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < PropOperations; ++i)
            sum += static_cast<std::size_t>(meta.indexOfProperty(names[i % names.size()]));
        return sum;
    };
}

} // namespace tarn

#include "prop_bench_qt.moc"
