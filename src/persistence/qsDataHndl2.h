#pragma once

#include "rtl/SysUtils.h"
#include "rtl/TObject.h"
#include "rtl/TStrings.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TComponent;

struct TDataHandlingErrorTag {
    static constexpr std::string_view Name = "EDataHandlingError";
};
/// A property that is not there or cannot be set, a value that its type has not; with a text of the
/// current language.
using EDataHandlingError = TNamedException<TDataHandlingErrorTag>;

/// Tells callers that error messages are unwanted at present. Nothing here reads it.
inline bool SuppressErrorInfo = false;

// --- Finding properties -----------------------------------------------------------------------

/// Gives the record to search for an object's properties in the place of its class record. The
/// properties there must be those of a class that the object has.
using TTypeInfoProvider = TMethod<const TClassRecord&(const TObject&)>;

/// The property at the end of a dotted path through sub-objects, names without case; null when a
/// name on the way is unknown. `instance` becomes the object that has the property; it stays when
/// there is none. A kept leniency: where a name in the middle is no sub-object, or one that is
/// null, that name's property is the result and the rest of the path is ignored.
const TPropInfo* FindPropInfo(TObject*& instance, std::string_view path,
                              TTypeInfoProvider provider = {});

/// FindPropInfo for one path again and again: objects of the classes of the last call cost a few
/// comparisons. The text of the path must outlive it. One thread at a time may use it.
class TPropRef {
public:
    /// Raises EListError for a path of more than MaxDepth names.
    explicit TPropRef(std::string_view path);

    /// As FindPropInfo does, without a provider.
    const TPropInfo* Find(TObject*& instance);

    static constexpr std::size_t MaxDepth = 8;

private:
    struct TStep {
        std::string_view Name;
        const TClassRecord* Record = nullptr; ///< where the name was looked up last
        const TPropInfo* Prop = nullptr;
    };
    std::array<TStep, MaxDepth> FSteps;
    std::size_t FCount = 0;
};

// --- Values -----------------------------------------------------------------------------------
// All raise EDataHandlingError 50523 for a property of a kind that they do not handle; writing one
// that is read-only raises an EDataHandlingError that names it. A write that fails changes nothing.
// The forms by path use FindPropInfo and raise EDataHandlingError 50520 when that finds nothing.

/// The value as text:
///   integers            decimal; of the type TColor the identifier, empty for a colour without one
///   characters          one byte
///   enumerations, sets  EnumToStr, SetToStr
///   floats              DateTimeToStr for TDateTime and TDate, TimeToStr for TTime, else
///   FloatToStr strings             as they are, wide ones in UTF-8
std::string GetPropAsText(const TObject& instance, const TPropInfo& prop);
std::string GetPropAsText(TObject& instance, std::string_view path,
                          TTypeInfoProvider provider = {});
/// The value from what GetPropAsText writes; a number for TColor is refused (50584), an empty text
/// is character 0. Texts that are no value raise 50582, 50583, 50584, or EConvertError for numbers,
/// dates and times; an integer outside the range of its type raises EConvertError, too.
void SetPropByText(TObject& instance, const TPropInfo& prop, std::string_view text);
void SetPropByText(TObject& instance, std::string_view path, std::string_view text,
                   TTypeInfoProvider provider = {});

/// The value in a slot of the size of a pointer: the integer of an ordinal kind or the object's
/// address in the slot itself; a float in the long double, a string in the std::string that the
/// slot points to, which are the caller's.
void GetPropAsPtr(const TObject& instance, const TPropInfo& prop, void*& slot);
void GetPropAsPtr(TObject& instance, std::string_view path, void*& slot,
                  TTypeInfoProvider provider = {});
/// The value from such a slot. Ordinals are not checked; an object of a wrong class raises
/// EConvertError.
void SetPropByPtr(TObject& instance, const TPropInfo& prop, void* slot);
void SetPropByPtr(TObject& instance, std::string_view path, void* slot,
                  TTypeInfoProvider provider = {});

/// The value as a variant: an integer for ordinal kinds, the object for classes, a float, a string,
/// or the variant that the property is.
TVariant GetPropAsVariant(const TObject& instance, const TPropInfo& prop);
TVariant GetPropAsVariant(TObject& instance, std::string_view path,
                          TTypeInfoProvider provider = {});
/// The value from a variant, converted as TVariant does; a text is read as SetPropByText reads it.
/// Numbers outside the range of the type and objects of a wrong class raise EConvertError.
void SetPropByVariant(TObject& instance, const TPropInfo& prop, const TVariant& value);
void SetPropByVariant(TObject& instance, std::string_view path, const TVariant& value,
                      TTypeInfoProvider provider = {});

// --- Enumerations and sets --------------------------------------------------------------------

/// The name of the value; empty for an ordinal without one.
std::string EnumToStr(const TTypeInfo& type, std::int64_t ordinal);
/// The ordinal of a name, without case. Raises EDataHandlingError 50582 for an unknown one.
std::int32_t StrToEnum(const TTypeInfo& type, std::string_view text);
/// Whether the text names a value of the enumeration.
bool ContainsIn(const TTypeInfo& type, std::string_view text);
/// Replaces the list by the names of the values in their order.
void FillEnumNames(const TTypeInfo& type, TStrings& list);

/// "[a,c]": the names of the bits in the mask; bits without a name are left out.
std::string SetToStr(const TTypeInfo& setType, std::uint32_t mask);
/// The mask of such a text, blanks around names allowed. Names are taken from behind the first "["
/// to the end of the text, whatever brackets stand between; a last name without "]" or "," behind
/// it is dropped. Raises EDataHandlingError 50582 for an unknown name and 50583 for a text without
/// "[" or one that is left open without a value before.
std::uint32_t StrToSet(const TTypeInfo& setType, std::string_view text);

// --- Components by name -----------------------------------------------------------------------

/// The component at the end of a dotted path of owned components below `root`, names without case;
/// null when there is none.
TComponent* FindComponentEx(TComponent* root, std::string_view path);

/// Splits a path into the longest front part that FindComponentEx knows and the rest. The result is
/// the component, or `root` when no part of the path is one; null for an empty path.
TComponent* AnalyseNamePath(TComponent* root, std::string_view path, std::string& compPath,
                            std::string& propName);

/// What a path leads to.
struct TAnalysisFindings {
    std::string CompPath;                ///< the path of the component that was found
    std::string PropName;                ///< the path behind it
    TComponent* Instance = nullptr;      ///< the component, or the root
    const TPropInfo* PropInfo = nullptr; ///< FindPropInfo of the rest; null when there is none
};
/// AnalyseNamePath and FindPropInfo; false for an empty path.
bool AnalyseNamePath(TComponent* root, std::string_view path, TAnalysisFindings& findings);

// --- Field classes ----------------------------------------------------------------------------

/// The class of that name, without case: from the field classes of the object's class and its
/// ancestors below TPersistent, else the registered one; null when there is none.
const TClassRecord* GetFieldClass(const TObject& instance, std::string_view className);
/// Registers the field classes of the object's class and its ancestors below TPersistent whose
/// names are not registered, and makes `registered` the list of them, for UnRegisterFieldClasses.
void RegisterFieldClasses(const TObject& instance, std::vector<const TClassRecord*>& registered);
void UnRegisterFieldClasses(const std::vector<const TClassRecord*>& registered);

} // namespace tarn
