#pragma once

#include <QMainWindow>

namespace tarn {

class TIde;
class TSourceView;

/// Search in the source editor: what is found is selected, and the search goes on around the end of
/// the text. The status bar tells what the selection does not.
class TFinder {
public:
    TFinder(TIde& ide, QMainWindow& window) : FIde(ide), FWindow(window) {}

    /// Asks for the text, beginning with the one that is selected, and finds it.
    void Find();
    /// Finds it again, backwards or not; asks when nothing was sought yet.
    void FindAgain(bool backwards);
    /// Asks for a line and goes there.
    void GoToLine();

private:
    bool Ask();
    void FindFrom(TSourceView& view, bool backwards);

    TIde& FIde;
    QMainWindow& FWindow;
    QString FSought;
    bool FMatchCase = false;
};

} // namespace tarn
