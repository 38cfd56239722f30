// The controls of the built-in kinds.

#include "PropKinds.h"
#include "qsSpcEditor.h"
#include "rtl/FloatText.h"
#include "rtl/SysUtils.h"
#include "rtl/TVariant.h"
#include "vcl/TCheckBox.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TComboBox.h"
#include "vcl/TEdit.h"
#include "vcl/TTextMeasure.h"

namespace tarn {
namespace {

constexpr int EditFrame = 8, CheckBoxFrame = 4, ListHeight = 90;

// --- Fields -----------------------------------------------------------------------------------

TEdit& EditOf(const TControlInfo& info) {
    return ControlOf<TEdit>(info);
}

template <TPropFlag Flag>
TControl* CreateEdit(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    auto* const edit = new TEdit;
    info.EControl = edit;
    edit->SetHeight(LineHeight(*edit, EditFrame));
    edit->OnChange = change;
    if (Flag != pfNone) info.InstallKeyFilter(Flag, editor.KeyFilter());
    return edit;
}

bool IsInteger(const TPropInfo& prop) {
    return prop.PropType->Kind == tkInteger || prop.PropType->Kind == tkInt64;
}

/// The value by the sign of its type.
std::int64_t IntegerValue(const TControlInfo& info) {
    if (info.EPropInfo->PropType->Kind == tkInt64) return PropValue<std::int64_t>(info);
    const auto value = PropValue<std::int32_t>(info);
    if (info.EPropInfo->PropType->MinValue < 0) return value;
    return static_cast<std::uint32_t>(value);
}

void FillInteger(TSpcEditor&, TControlInfo& info) {
    EditOf(info).SetText(IntToStr(IntegerValue(info)));
}

void ReadInteger(TSpcEditor&, TControlInfo& info) {
    const std::string& text = EditOf(info).Text();
    const std::int64_t value = StrToInt64(text.empty() ? "0" : text);
    if (info.EPropInfo->PropType->Kind == tkInt64) return SetPropValue(info, value);
    // A variant's number is checked against the range of the type.
    SetPropByVariant(*info.EInstance, *info.EPropInfo, TVariant(value));
}

/// The characters from 128 on are shown as those of their numbers, whatever the system's code page.
void FillChar(TSpcEditor&, TControlInfo& info) {
    const auto value = static_cast<char16_t>(PropValue<std::int32_t>(info));
    EditOf(info).SetText(Utf16ToUtf8({&value, 1}));
}

void ReadChar(TSpcEditor&, TControlInfo& info) {
    const std::u16string text = Utf8ToUtf16(EditOf(info).Text());
    const std::int32_t value = text.empty() ? 0 : text.front();
    if (value > 255)
        throw EConvertError(Format("'%s' is not a single-byte character", {EditOf(info).Text()}));
    SetPropValue(info, value);
}

void FillFloat(TSpcEditor&, TControlInfo& info) {
    EditOf(info).SetText(FloatToStr(PropValue<long double>(info)));
}

/// A text that still shows the value is no other value: the text has fewer digits, and what is not
/// finite cannot be typed.
void ReadFloat(TSpcEditor&, TControlInfo& info) {
    const std::string& text = EditOf(info).Text();
    if (text == FloatToStr(PropValue<long double>(info))) return;
    SetPropValue(info, text.empty() ? 0.0L : StrToFloat(text));
}

bool IsString(const TPropInfo& prop) {
    const TTypeKind kind = prop.PropType->Kind;
    return kind == tkString || kind == tkLString || kind == tkWString;
}

void FillString(TSpcEditor&, TControlInfo& info) {
    EditOf(info).SetText(PropValue<std::string>(info));
}

void ReadString(TSpcEditor&, TControlInfo& info) {
    SetPropValue(info, EditOf(info).Text());
}

TControl* CreateChar(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    auto* const edit = static_cast<TEdit*>(CreateEdit<pfNone>(editor, info, change));
    edit->SetMaxLength(1);
    return edit;
}

// --- Choices ----------------------------------------------------------------------------------

bool IsBoolean(const TPropInfo& prop) {
    return prop.PropType->Kind == tkEnumeration &&
           (prop.PropType == &TypeInfoOf<bool> || SameText(prop.PropType->Name, "Boolean"));
}

TControl* CreateEnum(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    auto* const box = new TComboBox;
    info.EControl = box;
    box->SetStyle(csDropDownList);
    box->SetHeight(LineHeight(*box, EditFrame));
    editor.ReadValueNames(*info.EPropInfo->PropType, box->Items());
    box->OnChange = change;
    return box;
}

void FillEnum(TSpcEditor&, TControlInfo& info) {
    const std::int64_t least = info.EPropInfo->PropType->MinValue;
    ControlOf<TComboBox>(info).SetItemIndex(
        static_cast<int>(PropValue<std::int32_t>(info) - least));
}

/// Without a line that is chosen the value has no name, and stays.
void ReadEnum(TSpcEditor&, TControlInfo& info) {
    const int index = ControlOf<TComboBox>(info).ItemIndex();
    if (index < 0) return;
    const std::int64_t least = info.EPropInfo->PropType->MinValue;
    SetPropValue(info, static_cast<std::int32_t>(least + index));
}

TControl* CreateBoolean(TSpcEditor&, TControlInfo& info, TNotifyEvent change) {
    auto* const box = new TCheckBox;
    info.EControl = box;
    box->SetHeight(LineHeight(*box, CheckBoxFrame));
    box->OnClick = change;
    return box;
}

void FillBoolean(TSpcEditor&, TControlInfo& info) {
    ControlOf<TCheckBox>(info).SetChecked(PropValue<std::int32_t>(info) != 0);
}

void ReadBoolean(TSpcEditor&, TControlInfo& info) {
    SetPropValue(info, std::int32_t{ControlOf<TCheckBox>(info).Checked()});
}

TControl* CreateSet(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change) {
    auto* const list = new TCheckListBox;
    info.EControl = list;
    list->SetStyle(lbOwnerDrawFixed);
    list->SetIntegralHeight(true);
    list->SetHeight(ListHeight);
    editor.ReadValueNames(*info.EPropInfo->PropType, list->Items());
    list->OnClickCheck = change;
    return list;
}

/// The bit of a line: that of the element's ordinal. A set has 32 bits; elements from there on are
/// never in it and have none.
std::uint32_t LineBit(const TControlInfo& info, int line) {
    constexpr std::int64_t setBits = 32;
    const std::int64_t ordinal = info.EPropInfo->PropType->CompType->MinValue + line;
    return ordinal >= 0 && ordinal < setBits ? std::uint32_t{1} << ordinal : 0;
}

void FillSet(TSpcEditor&, TControlInfo& info) {
    auto& list = ControlOf<TCheckListBox>(info);
    const auto mask = static_cast<std::uint32_t>(PropValue<std::int32_t>(info));
    for (int i = 0; i < list.Count(); ++i) list.SetChecked(i, (mask & LineBit(info, i)) != 0);
}

/// Bits without a name have no line, and stay.
void ReadSet(TSpcEditor&, TControlInfo& info) {
    const auto& list = ControlOf<TCheckListBox>(info);
    auto mask = static_cast<std::uint32_t>(PropValue<std::int32_t>(info));
    for (int i = 0; i < list.Count(); ++i) {
        const std::uint32_t bit = LineBit(info, i);
        mask = list.Checked(i) ? mask | bit : mask & ~bit;
    }
    SetPropValue(info, static_cast<std::int32_t>(mask));
}

// --- The table --------------------------------------------------------------------------------

template <TTypeKind... Kinds> bool IsOf(const TPropInfo& prop) {
    return ((prop.PropType->Kind == Kinds) || ...);
}

/// Objects are nodes of the tree.
TControl* CreateNothing(TSpcEditor&, TControlInfo&, TNotifyEvent) {
    return nullptr;
}
void MoveNothing(TSpcEditor&, TControlInfo&) {}

constexpr TPropKind Kinds[] = {
    {ekInteger, "Integer", IsInteger, CreateEdit<pfInteger>, FillInteger, ReadInteger},
    {ekChar, "Char", IsOf<tkChar>, CreateChar, FillChar, ReadChar},
    {ekFloat, "Float", IsOf<tkFloat>, CreateEdit<pfFloat>, FillFloat, ReadFloat},
    {ekString, "String", IsString, CreateEdit<pfNone>, FillString, ReadString},
    {ekBoolean, "Boolean", IsBoolean, CreateBoolean, FillBoolean, ReadBoolean},
    {ekEnum, "Enum", IsOf<tkEnumeration>, CreateEnum, FillEnum, ReadEnum},
    {ekSet, "Set", IsOf<tkSet>, CreateSet, FillSet, ReadSet},
    {ekComponent, "Component", IsOf<tkClass>, CreateNothing, MoveNothing, MoveNothing},
};

} // namespace

std::span<const TPropKind> BuiltInKinds() {
    return Kinds;
}

std::string BuiltInParams() {
    return Format("-- SpcEditor --%1:s%1:s[String%0:s]%1:sWidth=100%%%1:s%1:s[Integer%0:s]%1:s"
                  "Width=50%%%1:s%1:s[Float%0:s]%1:sWidth=50%%%1:s%1:s[Char%0:s]%1:sWidth=20%1:s"
                  "%1:s[Boolean%0:s]%1:sWidth=13%1:s%1:s[Enum%0:s]%1:sWidth=80%%%1:s%1:s[Set%0:s]"
                  "%1:sWidth=100%%%1:sCentredLabel=False%1:s%1:s[Component%0:s]%1:sWidth=100%%"
                  "%1:s",
                  {"Control", LineBreak});
}

// --- Kinds in general -------------------------------------------------------------------------

const TPropKind* FindKind(std::span<const TPropKind> kinds, const TPropInfo& prop) {
    for (const TPropKind& kind : kinds)
        if (kind.Recognises(prop)) return &kind;
    return nullptr;
}

const TPropKind* KindOfTag(std::span<const TPropKind> kinds, std::int32_t tag) {
    for (const TPropKind& kind : kinds)
        if (kind.Tag == tag) return &kind;
    return nullptr;
}

int LineHeight(const TControl& control, int frame) {
    static const TFont systemFont;
    const TFont& font = control.HasFont() ? *control.FontObject() : systemFont;
    return MeasureText(font, "").Height + frame;
}

} // namespace tarn
