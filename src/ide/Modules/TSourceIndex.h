#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarn {

class TSourceBuffer;

/// The sources of the open modules by their files, so that one of very many is found at once.
class TSourceIndex {
public:
    /// The buffer is kept under its present name, until it is removed under the same one.
    void Add(TSourceBuffer& buffer);
    bool Remove(TSourceBuffer& buffer); ///< whether it was there
    /// The buffer of the file, see IsSameFile; the one that was added first when there are several.
    /// Null when there is none. \param fileName a normal name
    TSourceBuffer* Find(std::string_view fileName) const;

private:
    std::unordered_map<std::string, std::vector<TSourceBuffer*>> FBuffers; ///< by AnsiTextKey
};

} // namespace tarn
