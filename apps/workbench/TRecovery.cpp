#include "TRecovery.h"

#include "Modules/TModuleList.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

namespace tarn {

namespace {

/// Whether a text has waited long enough since the first change that is not in its file; without
/// `now` none waits.
bool IsDue(std::optional<TRecovery::TTime>& since, std::optional<TRecovery::TTime> now) {
    if (!now) return true;
    if (!since) since = now;
    return *now - *since >= TRecovery::Delay;
}

} // namespace

void TRecovery::Follow(TBuffers buffers, TTime now) {
    Follow(buffers, std::optional(now));
}

void TRecovery::WriteNow(TBuffers buffers) {
    WaitForDisk(); // it may be writing an older text
    Follow(buffers, std::nullopt);
    WaitForDisk();
}

void TRecovery::WaitForDisk() {
    if (FWriting.valid()) FWriting.wait();
    Collect();
}

void TRecovery::Follow(TBuffers buffers, std::optional<TTime> now) {
    if (!Collect()) return;
    DropSaved();
    std::vector<TSnapshot> snapshots;
    for (TSourceBuffer* const buffer : buffers) {
        if (!buffer->Modified()) continue;
        const TEditText& text = buffer->Text();
        TEntry& entry = EntryOf(*buffer);
        if (entry.Written == text.Revision() || !IsDue(entry.Since, now)) continue;
        entry.Waiting = text.Revision();
        entry.Since.reset();
        snapshots.push_back(
            {entry.File, {buffer->FileName(), buffer->Identity(), text.Size(), text.Text()}});
    }
    if (snapshots.empty()) return;
    try {
        // A big text takes longer to reach the disk than a user waits for a key.
        FWriting =
            std::async(std::launch::async, [all = std::move(snapshots)] { return Write(all); });
    } catch (const std::system_error& error) { // no thread is to be had
        Written(error.what());
    }
}

/// Takes the result of the thread; false while that is at work.
bool TRecovery::Collect() {
    if (!FWriting.valid()) return true;
    if (FWriting.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return false;
    Written(FWriting.get());
    return true;
}

void TRecovery::Written(const std::string& error) {
    FError = error;
    for (TEntry& entry : FEntries) {
        if (entry.Waiting != 0 && FError.empty()) entry.Written = entry.Waiting;
        entry.Waiting = 0;
    }
}

/// Removes the files of buffers that are saved, undone or closed.
void TRecovery::DropSaved() {
    std::erase_if(FEntries, [](const TEntry& entry) {
        if (entry.Buffer && entry.Buffer->Modified()) return false;
        Discard(entry.File);
        return true;
    });
    if (FEntries.empty()) FError.clear();
}

/// The last one of a buffer: those before it are other texts that were recovered for the file, and
/// stay as they are.
TRecovery::TEntry& TRecovery::EntryOf(TSourceBuffer& buffer) {
    const auto found = std::find_if(FEntries.rbegin(), FEntries.rend(),
                                    [&](const TEntry& entry) { return entry.Buffer == &buffer; });
    if (found != FEntries.rend()) return *found;
    return FEntries.emplace_back(TEntry{&buffer, FFolder.NewFile()});
}

std::string TRecovery::Write(const std::vector<TSnapshot>& snapshots) {
    std::string firstError;
    for (const TSnapshot& snapshot : snapshots) {
        const std::string head = RecoveryHead(snapshot.Copy);
        const std::array<std::string_view, 2> chunks = {head, snapshot.Copy.Text};
        try {
            SaveFile(snapshot.File, chunks);
        } catch (const std::exception& error) {
            if (firstError.empty()) firstError = error.what();
        }
    }
    return firstError;
}

void TRecovery::Forget(TBuffers buffers) {
    WaitForDisk();
    for (const TEntry& entry : FEntries) Discard(entry.File);
    FEntries.clear();
    // What is typed from now on is wanted again: the user's session may go on all the same.
    for (TSourceBuffer* const buffer : buffers)
        if (buffer->Modified()) EntryOf(*buffer).Written = buffer->Text().Revision();
}

// --- After a crash ----------------------------------------------------------------------------

namespace {

/// Whether the program was killed between saving the text and removing its recovery file.
bool IsSaved(const std::string& file) {
    const TRecoveryCopy head = ReadRecovery(file, false);
    const auto identity = IdentityOf(head.FileName);
    return identity && identity->Size == head.Size &&
           LoadFileText(head.FileName) == ReadRecovery(file).Text;
}

} // namespace

std::vector<std::string> TRecovery::TakeLeft() {
    std::vector<std::string> left = FFolder.TakeLeft();
    std::erase_if(left, [](const std::string& file) {
        try {
            if (!IsSaved(file)) return false;
        } catch (const std::exception&) {
            return false; // restoring it will say why
        }
        Discard(file);
        return true;
    });
    return left;
}

TSourceBuffer& TRecovery::Restore(TModuleList& modules, const std::string& file) {
    const TRecoveryCopy copy = ReadRecovery(file);
    TSourceBuffer& buffer = modules.Recover(copy.FileName, copy.Text, copy.Identity);
    FEntries.push_back({&buffer, file, buffer.Text().Revision()});
    return buffer;
}

void TRecovery::Discard(const std::string& file) {
    std::error_code ignored; // what stays is offered again, and then known to be saved
    std::filesystem::remove(file, ignored);
}

} // namespace tarn
