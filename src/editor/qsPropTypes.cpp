#include "qsPropTypes.h"

#include "rtl/UpdateOnce.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"

namespace tarn {
namespace {

// Without a default: an owner may begin with another line than none.
constexpr TPropInfo SelectStringsProps[] = {
    Published<&TSelectStrings::SelectedIndex>("SelectedIndex"),
};

} // namespace

constinit const TClassRecord TCheckStrings::ClassRecord{"TCheckStrings", &TStrings::ClassRecord,
                                                        CreateObject<TCheckStrings>};
constinit const TClassRecord TSelectStrings::ClassRecord{
    "TSelectStrings", &TStringList::ClassRecord, CreateObject<TSelectStrings>, SelectStringsProps};
constinit const TClassRecord TMemoStrings::ClassRecord{"TMemoStrings", &TStringList::ClassRecord,
                                                       CreateObject<TMemoStrings>};
constinit const TClassRecord TPictureEx::ClassRecord{"TPictureEx", &TPicture::ClassRecord,
                                                     CreateObject<TPictureEx>};
constinit const TClassRecord TFontEx::ClassRecord{"TFontEx", &TFont::ClassRecord,
                                                  CreateObject<TFontEx>};

// --- TCheckStrings ----------------------------------------------------------------------------

void TCheckStrings::SetChecked(int index, bool value) {
    if (Checked(index) == value) return;
    Check(index, value);
    Changed();
}

void TCheckStrings::Assign(const TPersistent* source) {
    if (source == this) return;
    const auto* const items = dynamic_cast<const TItemStrings*>(source);
    UpdateOnce(*this, [&] {
        TItemStrings::Assign(source);
        for (int i = 0; items && i < Count(); ++i) Check(i, items->Checked(i));
    });
}

bool TCheckStrings::HasChecks() const {
    for (int i = 0; i < Count(); ++i)
        if (Checked(i)) return true;
    return false;
}

bool TCheckStrings::SameChecks(const TItemStrings& other) const {
    if (Count() != other.Count()) return false;
    for (int i = 0; i < Count(); ++i)
        if (Checked(i) != other.Checked(i)) return false;
    return true;
}

/// The lines come first in a stream, and take the checks that there were away.
void TCheckStrings::DefineProperties(TFiler& filer) {
    TItemStrings::DefineProperties(filer);
    const auto* const ancestor = ClassCast<TCheckStrings>(filer.Ancestor());
    const bool sameLines = ancestor && Equals(*ancestor);
    filer.DefineProperty(
        "Checked", [this](TReader& reader) { ReadChecks(reader); },
        [this](TWriter& writer) { WriteChecks(writer); },
        sameLines ? !SameChecks(*ancestor) : HasChecks());
}

/// Numbers that no line has are passed over: a user may have shortened the list in the file.
void TCheckStrings::ReadChecks(TReader& reader) {
    for (int i = 0; i < Count(); ++i) Check(i, false);
    reader.ReadListBegin();
    while (!reader.EndOfList())
        if (const std::int32_t index = reader.ReadInteger(); Has(index)) Check(index, true);
    reader.ReadListEnd();
    Changed();
}

void TCheckStrings::WriteChecks(TWriter& writer) const {
    writer.WriteListBegin();
    for (int i = 0; i < Count(); ++i)
        if (Checked(i)) writer.WriteInteger(i);
    writer.WriteListEnd();
}

// --- TSelectStrings ---------------------------------------------------------------------------

void TSelectStrings::Assign(const TPersistent* source) {
    // The index first: who is told of the change of the lines sees both.
    if (const auto* const strings = dynamic_cast<const TSelectStrings*>(source))
        SelectedIndex = strings->SelectedIndex;
    TStringList::Assign(source);
}

} // namespace tarn
