#pragma once

#include <QProgressDialog>

#include <cstdint>
#include <memory>

namespace tarn {

/// How far the opening of a file is: a bar, for a file that is big enough to be waited for, with a
/// button to give it up. The rest of the program cannot be used meanwhile, but is painted.
class TOpenProgress {
public:
    TOpenProgress(QWidget* window, QString fileName);

    /// The steps of opening: half of the bar each.
    enum TPart : std::uint8_t { opRead, opShow };

    /// \param size bytes in all
    /// \return false when the user has given it up
    bool Step(TPart part, std::uint64_t done, std::uint64_t size);
    bool IsGivenUp() const { return FDialog && FDialog->wasCanceled(); }

private:
    QWidget* FWindow;
    QString FFileName;
    std::unique_ptr<QProgressDialog> FDialog; ///< null for a small file
};

} // namespace tarn
