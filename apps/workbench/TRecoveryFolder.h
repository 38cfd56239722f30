#pragma once

#include "rtl/FileIO.h"
#include "rtl/SafeFile.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A text that was being edited, set aside to outlive a crash.
struct TRecoveryCopy {
    std::string FileName;                  ///< of the source, absolute
    std::optional<TFileIdentity> Identity; ///< of the source when it was read; none without a file
    std::size_t Size = 0;                  ///< bytes of the text
    std::string Text;
};

/// What a recovery file has before the text: its lines
///
///     TarnExperts recovery 1
///     source DEVICE INODE SIZE NANOSECONDS    or: source none
///     name BYTES
///     the name of the source
///     text BYTES
///
/// Names are counted because they may hold anything.
std::string RecoveryHead(const TRecoveryCopy& copy);
/// Reads a recovery file, or its head alone without the text. Raises EFileError, and EConvertError
/// "FILE is damaged" when it is not what RecoveryHead and the text have made.
TRecoveryCopy ReadRecovery(const std::string& file, bool withText = true);

/// The folder of one running program for its recovery files: PID-NUMBER below a common one, with a
/// file that is locked as long as the program runs. Folders whose lock is free were left behind by
/// a crash.
class TRecoveryFolder {
public:
    /// \param root made when it is missing, with the folders above it. Raises EInOutError.
    explicit TRecoveryFolder(std::string root);
    TRecoveryFolder(const TRecoveryFolder&) = delete;
    TRecoveryFolder& operator=(const TRecoveryFolder&) = delete;
    /// Removes the folders that are held and have no recovery file.
    ~TRecoveryFolder();

    const std::string& Own() const { return FOwn; }
    /// The name for another recovery file.
    std::string NewFile();
    /// Takes over what others have left behind: their recovery files. They are this program's from
    /// now on, and those that are still there when it ends are found by the next one.
    std::vector<std::string> TakeLeft();

private:
    bool Hold(const std::string& folder, bool make);
    void MakeOwn();
    static std::vector<std::string> FilesIn(const std::string& folder);

    std::string FRoot;
    std::string FOwn;
    std::map<std::string, TOwnedHandle> FLocks; ///< of the folders that are held
    int FLastFile = 0;
};

} // namespace tarn
