// Loads any bytes into a settings tree. A load that fails has changed nothing, not even in part;
// what is loaded can be saved and loaded to the same end, from where on nothing changes any more.

#include "TTestTree.h"
#include "qsSpcMng.h"

#include <cstdint>
#include <cstdlib>

namespace {

using namespace tarn;

void Require(bool condition) {
    if (!condition) std::abort();
}

/// A tree with an object of an expert.
struct TSubject {
    TSubject() {
        for (const std::string_view id : {"a", "b"}) Tree.Entries.Add(id);
        Tree.References.Add(&Part, "x");
        Part.Lines()->Add("as it was");
    }
    bool Load(std::string_view bytes) {
        TObjectSaver saver;
        saver.DetectFormat = true;
        saver.OnCheckDescription = [](std::string_view description, bool text, bool& cancel) {
            CheckVer(description, text, cancel, {});
        };
        return saver.SafeLoadObjects(TOne(Tree), TOver(bytes));
    }
    TPart Part;
    TTree Tree;
};

void RequireFixedPoint(TSubject& subject, std::uint8_t format) {
    const std::string saved = Saved(subject.Tree, format);
    TSubject again;
    Require(again.Load(saved));
    const std::string savedAgain = Saved(again.Tree, format);
    if (format == 1) return Require(savedAgain == saved);
    // A text has characters only; what is none becomes one by the first save.
    TSubject third;
    Require(third.Load(savedAgain));
    Require(Saved(third.Tree, format) == savedAgain);
}

/// The ways of loading that may end halfway.
template <class F> void Try(F&& load) {
    try {
        load();
    } catch (const Exception&) {
        return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    TSubject subject;
    const std::string before = Saved(subject.Tree);
    if (!subject.Load(bytes)) {
        Require(Saved(subject.Tree) == before);
    } else {
        RequireFixedPoint(subject, 1);
        // What is kept may have names that no text can hold.
        Try([&] { RequireFixedPoint(subject, 2); });
    }
    Try([&] {
        TSubject other;
        TObjectSaver saver;
        saver.DetectFormat = saver.KeepGoing = true;
        saver.AsksToContinue = false;
        saver.LoadObjects(TOne(other.Tree), TOver(bytes));
        (void)Saved(other.Tree);
    });
    for (const std::string_view path : {"Part", "Entries.a", "References.x"})
        Try([&] {
            TPart node;
            TFitReader(bytes).ReadNode(node, path);
        });
    return 0;
}
