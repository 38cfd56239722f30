// The controls of the extended kinds.

#include "PropKinds.h"
#include "TSpcImage.h"
#include "qsDataHndl2.h"
#include "qsPropTypes.h"
#include "rtl/DateUtils.h"
#include "rtl/SysUtils.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TColorEdit.h"
#include "vcl/TComboBox.h"
#include "vcl/TDateTimePicker.h"
#include "vcl/TFontEdit.h"
#include "vcl/THotKeyEx.h"
#include "vcl/TMemo.h"
#include "vcl/TSpinEdit.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr int EditFrame = 8, SpinEditFrame = 9;                         // pixels
constexpr int CheckListHeight = 100, ImageHeight = 32, MemoHeight = 90; // pixels

// --- Which properties -------------------------------------------------------------------------

/// Whether the property's type has the kind and, without case, the name of one of these.
template <const TTypeInfo&... Types> bool IsNamed(const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    return ((type.Kind == Types.Kind && SameText(type.Name, Types.Name)) || ...);
}

bool IsShortCutString(const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    const bool isString = type.Kind == tkString || type.Kind == tkLString || type.Kind == tkWString;
    return isString && SameText(type.Name, ShortCutStringType.Name);
}

template <class T> bool IsA(const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    return type.Kind == tkClass && type.Class && type.Class->InheritsFrom(T::ClassRecord);
}

// --- Making controls --------------------------------------------------------------------------

/// A control that the row owns from now on.
template <class T> T& NewControl(TControlInfo& info, int height) {
    auto* const control = new T;
    info.EControl = control;
    control->SetHeight(height);
    return *control;
}

/// A control of one line, with so many pixels of frame.
template <class T, int Frame = EditFrame>
T& NewLineControl(TControlInfo& info, TNotifyEvent change) {
    T& control = NewControl<T>(info, 0);
    control.SetHeight(LineHeight(control, Frame));
    control.OnChange = change;
    return control;
}

template <class T, int Frame = EditFrame>
TControl* CreateLine(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    return &NewLineControl<T, Frame>(info, change);
}

/// The object that the property holds. It is changed in place: its class may be another than the
/// declared one.
template <class T> T* ObjectOf(const TControlInfo& info) {
    return ClassCast<T>(PropValue<TObject*>(info));
}

/// A property without an object has no row.
template <class T, auto Create>
TControl* CreateFor(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    return ObjectOf<T>(info) ? Create(editor, info, change) : nullptr;
}

/// Moves the value between the control and the property's object, as long as there is one.
template <class T, class C, void (*Transfer)(T&, C&)>
void WithObject(TSpcEditor&, TControlInfo& info) {
    if (T* const object = ObjectOf<T>(info)) Transfer(*object, ControlOf<C>(info));
}

// --- Numbers ----------------------------------------------------------------------------------

// The text is what counts: it has every value, and shows what is none.
void FillSpinInt(TSpcEditor&, TControlInfo& info) {
    ControlOf<TSpinEdit>(info).SetText(GetPropAsText(*info.EInstance, *info.EPropInfo));
}

/// The limits are those that a parameter section has set.
std::int64_t Limited(const TSpinEdit& edit, std::int64_t value) {
    if (edit.MinValue() == edit.MaxValue()) return value;
    return std::max<std::int64_t>(std::min<std::int64_t>(value, edit.MaxValue()), edit.MinValue());
}

void ReadSpinInt(TSpcEditor&, TControlInfo& info) {
    const auto& edit = ControlOf<TSpinEdit>(info);
    const std::string& text = edit.Text();
    if (text == GetPropAsText(*info.EInstance, *info.EPropInfo)) return;
    const std::int64_t value = Limited(edit, StrToInt64(text.empty() ? "0" : text));
    // A variant's number is checked against the range of the type.
    SetPropByVariant(*info.EInstance, *info.EPropInfo, TVariant(value));
}

void FillColor(TSpcEditor&, TControlInfo& info) {
    ControlOf<TColorEdit>(info).SetSelectedColor(PropValue<TColor>(info));
}

void ReadColor(TSpcEditor&, TControlInfo& info) {
    SetPropValue(info, ControlOf<TColorEdit>(info).SelectedColor());
}

// --- Moments ----------------------------------------------------------------------------------

template <TDateTimeKind Kind>
TControl* CreatePicker(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& picker = NewLineControl<TDateTimePicker>(info, change);
    picker.SetKind(Kind);
    return &picker;
}

TDateTime MomentOf(const TControlInfo& info) {
    return static_cast<TDateTime>(PropValue<long double>(info));
}

void FillMoment(TSpcEditor&, TControlInfo& info) {
    ControlOf<TDateTimePicker>(info).SetDateTime(MomentOf(info));
}

/// A moment that was not changed is not written: the property may hold it more exactly.
void ReadMoment(TSpcEditor&, TControlInfo& info) {
    const TDateTime shown = ControlOf<TDateTimePicker>(info).DateTime();
    if (shown == MomentOf(info)) return;
    SetPropValue(info, static_cast<long double>(shown));
}

// --- Shortcuts --------------------------------------------------------------------------------

TControl* CreateHotKey(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& field = NewLineControl<THotKeyEx>(info, change);
    field.InvalidKeys = {};
    field.Modifiers = {};
    return &field;
}

TShortCut ShortCutOf(const TControlInfo& info) {
    return static_cast<TShortCut>(PropValue<std::int32_t>(info));
}

void FillShortCut(TSpcEditor&, TControlInfo& info) {
    ControlOf<THotKeyEx>(info).SetHotKey(ShortCutOf(info));
}

void ReadShortCut(TSpcEditor&, TControlInfo& info) {
    const TShortCut pressed = ControlOf<THotKeyEx>(info).HotKey();
    if (pressed != ShortCutOf(info)) SetPropValue(info, std::int32_t{pressed});
}

void FillShortCutString(TSpcEditor&, TControlInfo& info) {
    ControlOf<THotKeyEx>(info).SetHotKey(TextToShortCut(PropValue<std::string>(info)));
}

/// A text that is no shortcut comes back empty.
void ReadShortCutString(TSpcEditor&, TControlInfo& info) {
    SetPropValue(info, ShortCutToText(ControlOf<THotKeyEx>(info).HotKey()));
}

// --- Lists of lines ---------------------------------------------------------------------------

TControl* CreateCheckList(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& list = NewControl<TCheckListBox>(info, CheckListHeight);
    list.SetColumns(0);
    list.OnClickCheck = change;
    return &list;
}

void FillChecks(TCheckStrings& strings, TCheckListBox& list) {
    list.Items().Assign(&strings);
    for (int i = 0; i < list.Count(); ++i) list.SetChecked(i, strings.Checked(i));
}

/// The lines, too: the menu changes them.
void ReadChecks(TCheckStrings& strings, TCheckListBox& list) {
    strings.Assign(&list.Items());
}

TControl* CreateSelectList(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& box = NewLineControl<TComboBox>(info, change);
    box.SetStyle(csDropDownList); // a text that is no line could not be kept
    return &box;
}

void FillSelection(TSelectStrings& strings, TComboBox& box) {
    box.Items().Assign(&strings);
    box.SetItemIndex(strings.SelectedIndex);
}

/// An index outside the lines shows as none, and stays when nothing was changed.
void ReadSelection(TSelectStrings& strings, TComboBox& box) {
    const int index = strings.SelectedIndex;
    const int shown = index >= 0 && index < strings.Count() ? index : -1;
    if (box.ItemIndex() == shown && box.Items().Equals(strings)) return;
    strings.SelectedIndex = box.ItemIndex();
    strings.Assign(&box.Items());
}

TControl* CreateMemo(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& memo = NewControl<TMemo>(info, MemoHeight);
    memo.SetWordWrap(false);
    memo.SetScrollBars(ssVertical);
    memo.OnChange = change;
    return &memo;
}

void FillLines(TStrings& strings, TMemo& memo) {
    memo.Lines().Assign(&strings);
}

/// Lines that were not changed are not written: the list may hold more than its lines.
void ReadLines(TStrings& strings, TMemo& memo) {
    if (!memo.Lines().Equals(strings)) strings.Assign(&memo.Lines());
}

// --- Fonts and pictures -----------------------------------------------------------------------

TControl* CreateFontEdit(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& edit = NewLineControl<TFontEdit>(info, change);
    edit.SetListInstalledFonts(true);
    return &edit;
}

void FillFont(TFont& font, TFontEdit& edit) {
    edit.SetSelectedFont(font);
}

void ReadFont(TFont& font, TFontEdit& edit) {
    font.Assign(&edit.SelectedFont());
}

TControl* CreateImage(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto& image = NewControl<TSpcImage>(info, ImageHeight);
    image.SetStretch(true);
    image.OnChange = change;
    return &image;
}

void FillPicture(TPicture& picture, TSpcImage& image) {
    image.SetPicture(picture);
}

void ReadPicture(TPicture& picture, TSpcImage& image) {
    picture.Assign(&image.Picture());
}

/// A picture of a class that is no format cannot be copied into the control: it has no row.
TControl* CreateGraphicImage(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    const TClassRecord& record = ObjectOf<TGraphic>(info)->ClassType();
    const std::span<const TGraphicFormat> formats = GraphicFormats();
    const bool known =
        std::any_of(formats.begin(), formats.end(),
                    [&](const TGraphicFormat& format) { return format.Class == &record; });
    return known ? CreateImage(editor, info, change) : nullptr;
}

void FillGraphic(TGraphic& graphic, TSpcImage& image) {
    image.Picture().SetGraphic(&graphic);
}

/// A picture of another class raises EConvertError.
void ReadGraphic(TGraphic& graphic, TSpcImage& image) {
    graphic.Assign(image.Picture().Graphic());
}

// --- The table --------------------------------------------------------------------------------

/// The row of a kind for objects of class T in controls of class C.
template <class T, class C, auto Create, void (*Fill)(T&, C&), void (*Read)(T&, C&)>
constexpr TPropKind ObjectKind(std::int32_t tag, std::string_view name) {
    return {
        tag, name, IsA<T>, CreateFor<T, Create>, WithObject<T, C, Fill>, WithObject<T, C, Read>};
}

// Of the classes the first matching one decides.
constexpr TPropKind Kinds[] = {
    {xkSpinInt, "SpinInt", IsNamed<SpinIntType>, CreateLine<TSpinEdit, SpinEditFrame>, FillSpinInt,
     ReadSpinInt},
    {xkColor, "Color", IsNamed<ColorType>, CreateLine<TColorEdit>, FillColor, ReadColor},
    {xkDate, "Date", IsNamed<DateTimeType, DateType>, CreatePicker<dtkDate>, FillMoment,
     ReadMoment},
    {xkTime, "Time", IsNamed<TimeType>, CreatePicker<dtkTime>, FillMoment, ReadMoment},
    {xkShortCut, "ShortCut", IsNamed<ShortCutType>, CreateHotKey, FillShortCut, ReadShortCut},
    {xkShortCutString, "ShortCutString", IsShortCutString, CreateHotKey, FillShortCutString,
     ReadShortCutString},
    ObjectKind<TCheckStrings, TCheckListBox, CreateCheckList, FillChecks, ReadChecks>(
        xkCheckStrings, "CheckStrings"),
    ObjectKind<TSelectStrings, TComboBox, CreateSelectList, FillSelection, ReadSelection>(
        xkSelectStrings, "SelectStrings"),
    ObjectKind<TStrings, TMemo, CreateMemo, FillLines, ReadLines>(xkStrings, "Strings"),
    ObjectKind<TFont, TFontEdit, CreateFontEdit, FillFont, ReadFont>(xkFont, "Font"),
    ObjectKind<TPicture, TSpcImage, CreateImage, FillPicture, ReadPicture>(xkPicture, "Picture"),
    ObjectKind<TGraphic, TSpcImage, CreateGraphicImage, FillGraphic, ReadGraphic>(xkGraphic,
                                                                                  "Picture"),
};

} // namespace

std::span<const TPropKind> ExtendedKinds() {
    return Kinds;
}

std::string ExtendedParams() {
    return Format("%1:s-- SpcEditorPro --%1:s%1:s[SpinInt%0:s]%1:sWidth=65%%%1:s%1:s[Date%0:s]%1:s"
                  "Width=80%%%1:s%1:s[Time%0:s]%1:sWidth=80%%%1:s%1:s[Color%0:s]%1:sWidth=100%%"
                  "%1:s%1:s[Font%0:s]%1:sWidth=100%%%1:s%1:s[Picture%0:s]%1:sWidth=32%1:s"
                  "CentredLabel=False%1:s%1:s[CheckStrings%0:s]%1:sWidth=100%%%1:s"
                  "CentredLabel=False%1:s%1:s[SelectStrings%0:s]%1:sWidth=100%%%1:s%1:s"
                  "[Strings%0:s]%1:sWidth=100%%%1:sCentredLabel=False%1:s[ShortCut%0:s]%1:s"
                  "Width=50%%%1:s%1:s[ShortCutString%0:s]%1:sWidth=50%%%1:s%1:s",
                  {"Control", LineBreak});
}

} // namespace tarn
