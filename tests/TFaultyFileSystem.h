#pragma once

#include "rtl/FileSystem.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace tarn {

/// A file system in memory that can fail and lose its power at any operation. It knows what would
/// be on the disk already: contents and permissions since the last flush of the file, names since
/// that of their folder. A copy is a file system of its own in the same state.
///
///     TFaultyFileSystem files;
///     files.PutFile("/home/ExpData.spc", "old");
///     files.CutPowerAt(n);
///     { const TScopedFileSystem scope(files); Save(); } // catches its errors
///     for (int outcome = 0; outcome < files.Outcomes(); ++outcome) {
///         TFaultyFileSystem disk = files;
///         disk.Restart(outcome);
///         ... disk.Files(), or a load from it
///     }
class TFaultyFileSystem : public IFileSystem {
public:
    // What other processes do; never counted, never failing.
    void PutFolder(const std::string& path) { FFolders.insert(Key(path)); }
    /// A new file, safely on disk, in the place of an old one; makes its folder.
    void PutFile(const std::string& path, std::string_view bytes, mode_t mode = 0644);
    /// A symbolic link, safely on disk.
    void PutLink(const std::string& path, const std::string& target);
    /// Writes into a file in place, without a flush.
    void Overwrite(const std::string& path, std::string_view bytes);
    /// Removes a folder with its files.
    void RemoveFolder(const std::string& path);

    /// All names, with "CONTENTS (PERMISSIONS)", or "-> TARGET" for a symbolic link.
    std::map<std::string, std::string> Files() const;
    /// The handles that nobody has closed.
    int OpenFiles() const;

    /// The operations that follow are counted from 1. Number `operation` fails with `error` and
    /// does nothing.
    void FailAt(int operation, int error) { Arm(operation, error, false); }
    /// From number `operation` on nothing happens any more: each fails with EIO. Then see Outcomes.
    void CutPowerAt(int operation) { Arm(operation, EIO, true); }
    /// No operation fails.
    void FailNowhere() { Arm(0, 0, false); }
    /// The operations since the last of these three calls, each with its paths: "rename /a /b".
    const std::vector<std::string>& Log() const { return FLog; }

    /// In how many ways the disk can look after a power cut now: each name and each contents that
    /// was not flushed may be there or not, contents also as zeros of their length.
    int Outcomes() const;
    /// Puts the power on again, with what is on the disk then. Outcome 0 holds only what was
    /// flushed, the last one all that was done.
    void Restart(int outcome);

    std::size_t Room = std::numeric_limits<std::size_t>::max(); ///< bytes until the disk is full
    std::size_t MaxTransfer = 65536;                            ///< bytes of one read or write
    bool HasHardLinks = true;
    bool FoldersAreDevices = false; ///< true: no rename and no hard link from one to another
    bool FlushesFiles = true;       ///< false: a flush of a file only claims to be one
    bool FlushesFolders = true;     ///< likewise of a folder
    /// What another process does before the operation of this number.
    std::function<void(int operation)> OnOperation;

    int OpenToRead(const std::string& path, THandle& file) override;
    int Create(const std::string& path, mode_t mode, THandle& file) override;
    int Read(THandle file, char* to, std::size_t& count) override;
    int Write(THandle file, const char* from, std::size_t& count) override;
    int Flush(THandle file) override;
    int Close(THandle file) override;
    int StatusAt(const std::string& path, TFileStatus& status) override;
    int StatusOf(THandle file, TFileStatus& status) override;
    int CheckWritable(const std::string& path) override;
    int ReadLink(const std::string& path, std::string& target) override;
    int SetOwner(THandle file, uid_t owner, gid_t group) override;
    int SetPermissions(THandle file, mode_t mode) override;
    int Rename(const std::string& from, const std::string& to) override;
    int Link(const std::string& path, const std::string& newPath) override;
    int Remove(const std::string& path) override;
    int FlushFolder(const std::string& path) override;

private:
    struct TState {
        std::string Bytes;
        mode_t Mode = 0;
        uid_t Owner = 0;
        gid_t Group = 0;
        bool operator==(const TState&) const = default;
    };
    struct TNode {
        TState OnDisk, Now;
        std::int64_t ModifiedAt = 0;
        bool IsDirty() const { return !(OnDisk == Now); }
    };
    using TNodeNumber = std::optional<std::size_t>; ///< none: the name is free
    struct TOpen {
        std::size_t Node = 0, Position = 0;
        bool IsOpen = true, IsNew = false;
    };

    void Arm(int operation, int error, bool lasting) {
        FFailAt = operation;
        FError = error;
        FLasting = lasting;
        FLog.clear();
    }
    /// Begins an operation; returns the error that it is to fail with.
    int Begin(std::string operation) {
        FLog.push_back(std::move(operation));
        const int number = static_cast<int>(FLog.size());
        if (OnOperation) OnOperation(number);
        return FFailAt && (number == FFailAt || (FLasting && number > FFailAt)) ? FError : 0;
    }

    static std::string Key(const std::filesystem::path& path) {
        return path.lexically_normal().string();
    }
    static std::string FolderOf(const std::string& path) {
        return Key(std::filesystem::path(path).parent_path());
    }
    TNodeNumber NodeAt(const std::string& path) const {
        const auto found = FNames.find(Key(path));
        return found == FNames.end() ? std::nullopt : found->second.back();
    }
    bool IsLink(std::size_t node) const { return S_ISLNK(FNodes[node].Now.Mode); }
    /// The node of a name with its symbolic links followed; `error` says why there is none.
    TNodeNumber Followed(std::string path, int& error) const;
    int FillStatus(std::size_t node, TFileStatus& status) const;
    std::size_t AddNode(mode_t mode, std::string_view bytes);
    THandle AddHandle(std::size_t node) {
        FHandles.push_back({node});
        return static_cast<THandle>(FHandles.size() - 1);
    }
    TOpen* Opened(THandle file) {
        const auto number = static_cast<std::size_t>(file);
        return number < FHandles.size() && FHandles[number].IsOpen ? &FHandles[number] : nullptr;
    }
    void Name(const std::string& path, TNodeNumber node, bool onDisk) {
        std::vector<TNodeNumber>& states = FNames.try_emplace(Key(path), 1).first->second;
        if (onDisk) states.clear();
        states.push_back(node);
    }
    /// Runs `change` on the node of an open file.
    template <class F> int Change(THandle file, std::string operation, const F& change) {
        if (const int error = Begin(std::move(operation))) return error;
        TOpen* const open = Opened(file);
        if (!open) return EBADF;
        change(FNodes[open->Node]);
        return 0;
    }

    std::set<std::string> FFolders;
    std::vector<TNode> FNodes; ///< never shrinks: an open file outlives its names
    /// What each name has stood for since the last flush of its folder; in front what the disk
    /// holds, at the back what it stands for now.
    std::map<std::string, std::vector<TNodeNumber>> FNames;
    std::vector<TOpen> FHandles;
    std::int64_t FClock = 0;
    int FFailAt = 0, FError = 0;
    bool FLasting = false;
    std::vector<std::string> FLog;
};

// ---- what other processes do ----

inline std::size_t TFaultyFileSystem::AddNode(mode_t mode, std::string_view bytes) {
    const TState empty{.Bytes = {}, .Mode = mode};
    FNodes.push_back({empty, empty, ++FClock});
    FNodes.back().Now.Bytes = bytes;
    return FNodes.size() - 1;
}

inline void TFaultyFileSystem::PutFile(const std::string& path, std::string_view bytes,
                                       mode_t mode) {
    const std::size_t node = AddNode(S_IFREG | mode, bytes);
    FNodes[node].OnDisk = FNodes[node].Now;
    FFolders.insert(FolderOf(path));
    Name(path, node, true);
}

inline void TFaultyFileSystem::PutLink(const std::string& path, const std::string& target) {
    PutFile(path, target);
    TNode& node = FNodes[*NodeAt(path)];
    node.Now.Mode = node.OnDisk.Mode = S_IFLNK | 0777;
}

inline void TFaultyFileSystem::Overwrite(const std::string& path, std::string_view bytes) {
    TNode& node = FNodes.at(NodeAt(path).value());
    node.Now.Bytes = bytes;
    node.ModifiedAt = ++FClock;
}

inline void TFaultyFileSystem::RemoveFolder(const std::string& path) {
    FFolders.erase(Key(path));
    for (auto& [name, states] : FNames)
        if (FolderOf(name) == Key(path)) states = {std::nullopt};
}

inline std::map<std::string, std::string> TFaultyFileSystem::Files() const {
    std::map<std::string, std::string> files;
    for (const auto& [name, states] : FNames) {
        if (!states.back()) continue;
        const TState& state = FNodes[*states.back()].Now;
        std::string mode;
        for (int shift = 6; shift >= 0; shift -= 3)
            mode += static_cast<char>('0' + ((state.Mode >> shift) & 7));
        files[name] = S_ISLNK(state.Mode) ? "-> " + state.Bytes : state.Bytes + " (" + mode + ")";
    }
    return files;
}

inline int TFaultyFileSystem::OpenFiles() const {
    return static_cast<int>(std::count_if(FHandles.begin(), FHandles.end(),
                                          [](const TOpen& open) { return open.IsOpen; }));
}

// ---- power cuts ----

inline int TFaultyFileSystem::Outcomes() const {
    std::size_t count = 1;
    for (const auto& [name, states] : FNames) count *= states.size();
    for (const TNode& node : FNodes)
        if (node.IsDirty()) count *= 3;
    return static_cast<int>(count);
}

inline void TFaultyFileSystem::Restart(int outcome) {
    // The outcome is a number whose digits are the choices.
    auto rest = static_cast<std::size_t>(outcome);
    const auto choice = [&rest](std::size_t count) {
        return std::exchange(rest, rest / count) % count;
    };
    for (auto& [name, states] : FNames) {
        const TNodeNumber node = states[choice(states.size())];
        states = {node};
    }
    for (TNode& node : FNodes) {
        if (!node.IsDirty()) continue;
        const std::size_t chosen = choice(3);
        if (chosen == 0) node.Now = node.OnDisk;
        if (chosen == 1 && node.Now.Bytes != node.OnDisk.Bytes)
            node.Now.Bytes.assign(node.Now.Bytes.size(), '\0');
        node.OnDisk = node.Now;
    }
    FHandles.clear();
    FailNowhere();
}

// ---- the operations ----

inline TFaultyFileSystem::TNodeNumber TFaultyFileSystem::Followed(std::string path,
                                                                  int& error) const {
    constexpr int maxLinks = 40;
    for (int links = 0; links <= maxLinks; ++links) {
        const TNodeNumber node = NodeAt(path);
        error = node ? 0 : FFolders.count(Key(path)) ? EISDIR : ENOENT;
        if (!node || !IsLink(*node)) return node;
        path = std::filesystem::path(path).parent_path() / FNodes[*node].Now.Bytes;
    }
    error = ELOOP;
    return std::nullopt;
}

inline int TFaultyFileSystem::OpenToRead(const std::string& path, THandle& file) {
    if (const int error = Begin("open " + path)) return error;
    int error = 0;
    const TNodeNumber node = Followed(path, error);
    if (node) file = AddHandle(*node);
    return error;
}

inline int TFaultyFileSystem::Create(const std::string& path, mode_t mode, THandle& file) {
    if (const int error = Begin("create " + path)) return error;
    if (NodeAt(path)) return EEXIST;
    if (!FFolders.count(FolderOf(path))) return ENOENT;
    constexpr mode_t mask = 022;
    const std::size_t node = AddNode(S_IFREG | (mode & ~mask), {});
    Name(path, node, false);
    file = AddHandle(node);
    FHandles.back().IsNew = true;
    return 0;
}

inline int TFaultyFileSystem::Read(THandle file, char* to, std::size_t& count) {
    if (const int error = Begin("read")) return error;
    TOpen* const open = Opened(file);
    if (!open) return EBADF;
    const std::string& bytes = FNodes[open->Node].Now.Bytes;
    const std::size_t from = std::min(open->Position, bytes.size());
    count = bytes.copy(to, std::min(count, MaxTransfer), from);
    open->Position = from + count;
    return 0;
}

inline int TFaultyFileSystem::Write(THandle file, const char* from, std::size_t& count) {
    if (const int error = Begin("write")) return error;
    TOpen* const open = Opened(file);
    if (!open) return EBADF;
    if (Room == 0) return ENOSPC;
    count = std::min({count, MaxTransfer, Room});
    Room -= count;
    TNode& node = FNodes[open->Node];
    node.Now.Bytes.append(from, count); // only new files are opened for writing
    node.ModifiedAt = ++FClock;
    return 0;
}

inline int TFaultyFileSystem::Flush(THandle file) {
    return Change(file, "flush", [this](TNode& node) {
        if (FlushesFiles) node.OnDisk = node.Now;
    });
}

inline int TFaultyFileSystem::Close(THandle file) {
    const int error = Begin("close");
    TOpen* const open = Opened(file);
    if (!open) return EBADF;
    open->IsOpen = false;
    if (error && !FLasting && open->IsNew) { // it says that what was written is lost
        TNode& node = FNodes[open->Node];
        node.Now.Bytes.clear();
        node.OnDisk = node.Now;
    }
    return error;
}

inline int TFaultyFileSystem::FillStatus(std::size_t node, TFileStatus& status) const {
    const TNode& from = FNodes[node];
    status.Identity = {1, node + 1, from.Now.Bytes.size(), from.ModifiedAt};
    status.Mode = from.Now.Mode;
    status.Owner = from.Now.Owner;
    status.Group = from.Now.Group;
    return 0;
}

inline int TFaultyFileSystem::StatusAt(const std::string& path, TFileStatus& status) {
    if (const int error = Begin("status " + path)) return error;
    int error = 0;
    const TNodeNumber node = Followed(path, error);
    if (node) return FillStatus(*node, status);
    if (error != EISDIR) return error;
    status = {};
    status.Mode = S_IFDIR | 0755;
    return 0;
}

inline int TFaultyFileSystem::StatusOf(THandle file, TFileStatus& status) {
    if (const int error = Begin("status")) return error;
    const TOpen* const open = Opened(file);
    return open ? FillStatus(open->Node, status) : EBADF;
}

inline int TFaultyFileSystem::CheckWritable(const std::string& path) {
    if (const int error = Begin("check " + path)) return error;
    int error = 0;
    const TNodeNumber node = Followed(path, error);
    if (!node) return error;
    return FNodes[*node].Now.Mode & S_IWUSR ? 0 : EACCES;
}

inline int TFaultyFileSystem::ReadLink(const std::string& path, std::string& target) {
    if (const int error = Begin("readlink " + path)) return error;
    const TNodeNumber node = NodeAt(path);
    if (!node && !FFolders.count(Key(path))) return ENOENT;
    if (!node || !IsLink(*node)) return EINVAL;
    target = FNodes[*node].Now.Bytes;
    return 0;
}

inline int TFaultyFileSystem::SetOwner(THandle file, uid_t owner, gid_t group) {
    return Change(file, "chown", [&](TNode& node) {
        if (owner != KeepOwner) node.Now.Owner = owner;
        node.Now.Group = group;
    });
}

inline int TFaultyFileSystem::SetPermissions(THandle file, mode_t mode) {
    return Change(file, "chmod", [&](TNode& node) { node.Now.Mode = S_IFREG | mode; });
}

inline int TFaultyFileSystem::Rename(const std::string& from, const std::string& to) {
    if (const int error = Begin("rename " + from + " " + to)) return error;
    const TNodeNumber node = NodeAt(from);
    if (!node || !FFolders.count(FolderOf(to))) return ENOENT;
    if (FoldersAreDevices && FolderOf(from) != FolderOf(to)) return EXDEV;
    if (node == NodeAt(to)) return 0; // two names of one file both stay
    Name(to, node, false);
    Name(from, std::nullopt, false);
    return 0;
}

inline int TFaultyFileSystem::Link(const std::string& path, const std::string& newPath) {
    if (const int error = Begin("link " + path + " " + newPath)) return error;
    const TNodeNumber node = NodeAt(path);
    if (!HasHardLinks) return EPERM;
    if (!node || !FFolders.count(FolderOf(newPath))) return ENOENT;
    if (FoldersAreDevices && FolderOf(path) != FolderOf(newPath)) return EXDEV;
    if (NodeAt(newPath)) return EEXIST;
    Name(newPath, node, false);
    return 0;
}

inline int TFaultyFileSystem::Remove(const std::string& path) {
    if (const int error = Begin("remove " + path)) return error;
    if (!NodeAt(path)) return ENOENT;
    Name(path, std::nullopt, false);
    return 0;
}

inline int TFaultyFileSystem::FlushFolder(const std::string& path) {
    if (const int error = Begin("flush folder " + path)) return error;
    if (!FFolders.count(Key(path))) return ENOENT;
    if (!FlushesFolders) return 0;
    for (auto& [name, states] : FNames)
        if (FolderOf(name) == Key(path)) states.erase(states.begin(), states.end() - 1);
    return 0;
}

} // namespace tarn
