#pragma once

#include "Source/TSourceBuffer.h"
#include "TRecoveryFolder.h"

#include <chrono>
#include <future>
#include <span>
#include <string>
#include <vector>

namespace tarn {

class TModuleList;

/// Keeps what was typed and not saved in recovery files: of each modified buffer one, written half
/// a minute after the change at the latest by a thread of its own, and removed when the buffer is
/// no longer modified or is closed. What a crash leaves behind is found by the next start.
///
/// A recovered text keeps the file it came from as its own, so that a second crash finds it again.
class TRecovery {
public:
    using TTime = std::chrono::steady_clock::time_point;
    using TBuffers = std::span<TSourceBuffer* const>;

    /// How long a change waits for being written, so that not every key is.
    static constexpr std::chrono::seconds Delay{20};

    /// \param root the folder of all programs' recovery files. Raises EInOutError.
    explicit TRecovery(const std::string& root) : FFolder(root) {}
    TRecovery(const TRecovery&) = delete;
    TRecovery& operator=(const TRecovery&) = delete;
    ~TRecovery() = default; // the future waits for the thread

    /// Looks at the loaded buffers; to be called every second or so.
    void Follow(TBuffers buffers, TTime now);
    /// The same without waiting: returns when all that is not saved is on disk.
    void WriteNow(TBuffers buffers);
    /// Returns when what Follow has begun to write is on disk.
    void WaitForDisk();
    /// Removes the files of all buffers: the user does not want what is not saved by now.
    void Forget(TBuffers buffers);
    /// Why the last writing has failed; empty when it has not.
    const std::string& Error() const { return FError; }
    const std::string& OwnFolder() const { return FFolder.Own(); }

    /// The recovery files of programs that have crashed, but for those whose text stands in its
    /// source by now: these are removed.
    std::vector<std::string> TakeLeft();
    /// Opens the source of a recovery file with the text that was typed into it. Raises EFileError
    /// and EConvertError; the file stays then.
    TSourceBuffer& Restore(TModuleList& modules, const std::string& file);
    static void Discard(const std::string& file);

private:
    struct TEntry {
        TWeak<TSourceBuffer> Buffer;
        std::string File;
        std::uint64_t Written = 0;       ///< the revision in the file; 0 for none
        std::uint64_t Waiting = 0;       ///< the one being written
        std::optional<TTime> Since = {}; ///< when the change that is to be written was seen
    };
    struct TSnapshot {
        std::string File;
        TRecoveryCopy Copy;
    };

    TEntry& EntryOf(TSourceBuffer& buffer);
    void Follow(TBuffers buffers, std::optional<TTime> now);
    bool Collect();
    void Written(const std::string& error);
    void DropSaved();
    static std::string Write(const std::vector<TSnapshot>& snapshots);

    TRecoveryFolder FFolder;
    std::vector<TEntry> FEntries;
    std::string FError;
    std::future<std::string> FWriting; ///< the error; the last member: it waits for its thread
};

} // namespace tarn
