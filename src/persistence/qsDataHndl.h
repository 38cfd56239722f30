#pragma once

#include "TObjectStorage.h"
#include "qsDataHndl2.h"

#include <span>
#include <string>
#include <string_view>

namespace tarn {

// Data handling: properties by name (qsDataHndl2.h), data headers (DataHeader.h), and, here, stored
// objects as free functions. Each does what the method of TObjectStorage of its name does, with
// plain readers and writers; streams of the format osfExtBin begin with "TPF0".

void SaveObjectBinary(TObjectList objects, const TStreamOrFile& target, bool asResource);
void SaveObjectBinaryEx(TObjectList objects, const TStreamOrFile& target);
void SaveObjectText(TObjectList objects, const TStreamOrFile& target, const TStrings& descriptions);
void SaveObjectDataBinary(TObjectList objects, const TStreamOrFile& target,
                          std::string_view description, bool asResource);
void SaveObjectDataText(TObjectList objects, const TStreamOrFile& target,
                        const TStrings& descriptions, std::string_view description);

void LoadObjectBinary(TObjectList objects, const TStreamOrFile& source, bool asResource);
void LoadObjectBinaryEx(TObjectList objects, const TStreamOrFile& source);
void LoadObjectText(TObjectList objects, const TStreamOrFile& source);
void LoadComponentBinary(std::span<TComponent*> components, const TStreamOrFile& source,
                         bool asResource);
void LoadComponentText(std::span<TComponent*> components, const TStreamOrFile& source);
void LoadObjects(TObjectList objects, const TStreamOrFile& source);
/// False when `onDescription` has cancelled.
bool LoadObjectData(TObjectList objects, const TStreamOrFile& source,
                    const TDescriptionEvent& onDescription = {});
/// \param asks whether the user is asked after an error
bool SafeLoadObjects(TObjectList objects, const TStreamOrFile& source, TObjectStorageFormat format,
                     bool asks = true, const TDescriptionEvent& onDescription = {});

// --- Property blocks: stored objects in a string ----------------------------------------------

/// The objects in osfBin or osfText; empty for the other formats.
std::string GetProps(TObjectList objects, TObjectStorageFormat format);
/// Reads the objects back; does nothing for the other formats. Raises what the loaders raise.
void SetProps(TObjectList objects, std::string_view data, TObjectStorageFormat format);
/// The same by SafeLoadObjects, whose result it has; true for the other formats.
bool SetPropsEx(TObjectList objects, std::string_view data, TObjectStorageFormat format);
/// Copies the stored properties of one object onto another one of a compatible class, asking after
/// errors as SetPropsEx does; SuppressErrorInfo is true meanwhile. A property that `source` does
/// not store, since it has its default, stays as it is in `dest`. The result is that of SetPropsEx.
bool ImportProps(TPersistent& dest, TPersistent& source);

} // namespace tarn
