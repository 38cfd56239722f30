#pragma once

#include "VerInfo.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class TComponent;
class TPersistent;
class TSpcObject;

// --- Whole trees ------------------------------------------------------------------------------

/// Writes a tree to a file.
using TSaveSpcProc = void (*)(TSpcObject& spc, const std::string& fileName,
                              TObjectStorageFormat format);
/// Reads one; false when the file is not there, or the check or the user has cancelled the load.
using TLoadSpcProc = bool (*)(TSpcObject& spc, const std::string& fileName, bool stopAtErrors,
                              const TCheckVerData& check);

/// With the version record in a data header; the root has the name that is given. Raises
/// EWriteError for another format than osfBin and osfText, before the file is touched.
void SaveSpcAs(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format,
               std::string_view headerName);
void SaveSpcInner(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format);
bool LoadSpcInner(TSpcObject& spc, const std::string& fileName, bool stopAtErrors,
                  const TCheckVerData& check);

/// What SaveSpc and LoadSpc call.
extern TSaveSpcProc SaveSpcProc;
extern TLoadSpcProc LoadSpcProc;

/// Saves a settings tree. Raises ESpcMngError 51501 for null.
void SaveSpc(TSpcObject* spc, const std::string& fileName, TObjectStorageFormat format);
/// Loads a settings tree, in the format that is found. Up to the first error, or asking after each
/// whether to go on; what was read stays. Raises ESpcMngError 51501 for null, 51504 for a version
/// record that is none.
bool LoadSpc(TSpcObject* spc, const std::string& fileName, bool stopAtErrors,
             const TCheckVerData& check);

/// Frees a tree and makes a fresh one of the same class, with its defaults. Raises ESpcMngError
/// 51501 for null, and EInvalidOperation for an abstract class; the tree stays then.
void RecreateSpc(std::unique_ptr<TSpcObject>& spc);

/// Loads one node from a settings file, all or nothing; see TFitReader::ReadNode. False when the
/// file has no such node. Raises ESpcMngError 51502 for a file that is not there, and the errors of
/// the readers.
bool LoadSingleNode(TPersistent& node, const std::string& fileName, std::string_view nodePath);

// --- What the settings editor starts with -----------------------------------------------------

/// The data of the process for settings editors.
struct TInitData {
    std::string FileName; ///< of the settings file
    TObjectStorageFormat Format = osfBin;
    TSpcObject* Spc = nullptr; ///< the tree, which stays its owner's
};

void FillInitData(std::string_view fileName, TObjectStorageFormat format, TSpcObject* spc);
void SetInitData(const TInitData& data);
/// Raises ESpcMngError 51500 as long as there is none.
const TInitData& GetInitData();

/// Keeps data, which stays its owner's, under an editor; null forgets it. It is forgotten with the
/// editor, too.
void AddUserData(TComponent& editor, void* data);
void* GetUserData(const TComponent& editor); ///< null when there is none

} // namespace tarn
