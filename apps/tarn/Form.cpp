#include "Form.h"

#include "ScriptSource.h"
#include "TProgress.h"
#include "rtl/SafeFile.h"
#include "rtl/TStream.h"
#include "streaming/FormConvert.h"
#include "streaming/FormEdit.h"
#include "streaming/TFormTree.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr std::string_view StandardOutput = "-";

/// What the command line gives.
struct TRequest {
    std::vector<std::string> Files;
    std::string File, Target, Kind, Path, Value;
    bool InPlace = false;
    bool Add = false;
};

/// A message that names what is in a file, without control characters.
std::string Shown(std::string_view message) {
    std::string shown(message);
    std::replace_if(
        shown.begin(), shown.end(), [](unsigned char c) { return c < ' ' || c == 127; }, '?');
    return shown;
}

/// A form file in memory, read once.
class TFormFile {
public:
    explicit TFormFile(const std::string& name)
        : FName(name), FIdentity(LoadFileInto(name, Limit, [this](std::size_t size) {
              FBytes = std::make_unique_for_overwrite<char[]>(size);
              return FBytes.get();
          })) {}

    std::string_view Bytes() const { return {FBytes.get(), FIdentity.Size}; }
    TFormProgress Telling(TProgress& progress) const {
        if (!progress.IsVisible()) return {};
        return [this, name = Shown(FName), &progress](std::size_t done) {
            progress.Show(static_cast<double>(done) / static_cast<double>(Bytes().size()), name);
        };
    }
    /// Raises EFileError when somebody else has changed the file since it was read.
    void Replace(std::span<const std::string_view> pieces) const {
        SaveFile(FName, pieces, FIdentity);
    }

    /// Does something with the bytes. Errors get the name of the file in front.
    template <class F> auto Try(F&& work) const {
        try {
            return work(Bytes());
        } catch (const EFormError& error) {
            throw EScriptError(ExitRefused, FName + ": " + Shown(error.what()));
        } catch (const EStreamError& error) {
            throw EScriptError(ExitRefused, FName + ": " + Shown(error.what()));
        }
    }

private:
    static constexpr std::size_t Limit = std::numeric_limits<std::ptrdiff_t>::max();

    std::string FName;
    std::unique_ptr<char[]> FBytes;
    TFileIdentity FIdentity;
};

/// A form file as a tree, and how it is laid out.
class TLoadedForm {
public:
    explicit TLoadedForm(std::string_view bytes) : FTree(bytes) {
        TFormFileReader reader(bytes);
        reader.ReadAll(FTree);
        FLayout = reader.Layout();
    }
    const TFormTree& Tree() const { return FTree; }
    const TFormLayout& Layout() const { return FLayout; }

private:
    TFormTree FTree;
    TFormLayout FLayout;
};

void Print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw EScriptError(ExitIO, "cannot write to standard output");
}

// --- The commands -----------------------------------------------------------------------------

constexpr std::pair<std::string_view, TFormFileKind> Kinds[] = {
    {"text", fkText}, {"binary", fkBinary}, {"resource", fkResource}};

/// The kind that a request asks for; without one a text becomes a resource, all else a text.
TFormFileKind WantedKind(const TRequest& request, std::string_view bytes) {
    for (const auto& [name, kind] : Kinds)
        if (SameText(request.Kind, name)) return kind;
    return FormFileKindOf(bytes) == fkText ? fkResource : fkText;
}

void Convert(const TRequest& request) {
    const TFormFile file(request.File);
    TProgress progress;
    const std::string converted = file.Try([&](std::string_view bytes) {
        TFormLayout layout;
        return ConvertForm(bytes, WantedKind(request, bytes), layout, file.Telling(progress));
    });
    const std::string_view piece = converted;
    if (request.Target == StandardOutput)
        Print(converted);
    else if (request.Target.empty() || request.Target == request.File)
        file.Replace({&piece, 1});
    else
        SaveFileText(request.Target, converted);
}

/// The exit code for one file, and what there is to say about it.
std::pair<int, std::string> Checked(const std::string& name, TProgress& progress) {
    try {
        const TFormFile file(name);
        const std::string difference = file.Try([&](std::string_view bytes) {
            return FormRoundTripDifference(bytes, file.Telling(progress));
        });
        if (difference.empty()) return {ExitDone, name + ": ok"};
        return {ExitRefused, name + ": " + Shown(difference)};
    } catch (const EScriptError& error) {
        return {error.ExitCode(), error.what()};
    } catch (const EFileError& error) {
        return {ExitIO, error.what()};
    }
}

void Check(const TRequest& request) {
    TProgress progress;
    int worst = ExitDone;
    std::size_t differing = 0;
    for (std::size_t i = 0; i < request.Files.size(); ++i) {
        const std::string& name = request.Files[i];
        progress.Show(static_cast<double>(i) / static_cast<double>(request.Files.size()),
                      Shown(name));
        const auto [exitCode, line] = Checked(name, progress);
        worst = std::max(worst, exitCode);
        if (exitCode != ExitDone) ++differing;
        progress.Clear();
        Print(line + "\n");
    }
    if (differing > 0)
        throw EScriptError(worst, Format("%d of %d files differ or cannot be read",
                                         {differing, request.Files.size()}));
}

/// "inherited Panel1: TPanel [2]", without the name where there is none.
std::string ShownHead(const TFormHeader& header) {
    std::string line;
    if (header.Flags.Contains(ffInherited)) line += "inherited ";
    if (header.Flags.Contains(ffInline)) line += "inline ";
    if (!header.ObjectName.empty()) line += Shown(header.ObjectName) + ": ";
    line += Shown(header.ClassName);
    if (header.Flags.Contains(ffChildPos)) line += Format(" [%d]", {header.ChildPos});
    return line + "\n";
}

/// The objects of a part of the form, a line each, children below their parent.
std::string Outline(const TFormTree& tree, TFormNodeIndex first, TFormNodeIndex behind) {
    constexpr std::size_t indent = 2;
    std::vector<TFormNodeIndex> parents;
    std::string text;
    for (TFormNodeIndex at = first; at < behind; ++at) {
        if (tree[at].Kind == fnProperty) {
            at = tree[at].Behind - 1; // the values hold no objects
            continue;
        }
        while (!parents.empty() && tree[parents.back()].Behind <= at) parents.pop_back();
        text += std::string(parents.size() * indent, ' ') + ShownHead(tree.Header(at));
        parents.push_back(at);
    }
    return text;
}

void Show(const TRequest& request) {
    const TFormFile file(request.File);
    Print(file.Try([&](std::string_view bytes) {
        const TLoadedForm form(bytes);
        const TFormTree& tree = form.Tree();
        if (request.Path.empty()) return Outline(tree, 0, tree.Count());
        const TFormNodeIndex node = RequireInForm(tree, request.Path);
        if (tree[node].Kind != fnObject) throw EFormError(FormPathOf(tree, node) + " is no object");
        return Outline(tree, node, tree[node].Behind);
    }));
}

void Get(const TRequest& request) {
    const TFormFile file(request.File);
    Print(file.Try([&](std::string_view bytes) {
        const TLoadedForm form(bytes);
        TFormLayout layout = form.Layout();
        layout.LineBreak = "\n";
        layout.Utf8Mark = false;
        const TFormNodeIndex node = RequireInForm(form.Tree(), request.Path);
        std::string text = FormTextOf(form.Tree(), node, layout);
        if (!text.ends_with('\n')) text += '\n';
        return text;
    }));
}

void Set(const TRequest& request) {
    const TFormFile file(request.File);
    const std::vector<TFormPatch> patches = file.Try([&](std::string_view bytes) {
        return SetInForm(bytes, {.Path = request.Path, .Value = request.Value, .Add = request.Add});
    });
    const std::vector<std::string_view> pieces = PatchedPieces(file.Bytes(), patches);
    if (request.InPlace) return file.Replace(pieces);
    for (const std::string_view piece : pieces) Print(piece);
}

} // namespace

void AddFormCommand(CLI::App& app, std::function<void()>& chosen) {
    CLI::App* const form = app.add_subcommand("form", "Convert, check, show or change form files");
    form->require_subcommand(1);
    form->footer("A form file is a text, a binary component stream or one in a resource; which of\n"
                 "them is seen from its first bytes.");
    const auto request = std::make_shared<TRequest>();
    const auto add = [&](const std::string& name, const std::string& help,
                         void (*run)(const TRequest&)) {
        CLI::App* const command = form->add_subcommand(name, help);
        command->final_callback([=, &chosen] { chosen = [=] { run(*request); }; });
        return command;
    };
    const auto file = [&](CLI::App* command) {
        command->add_option("FILE", request->File, "the form file")->required();
    };
    constexpr const char* paths =
        "A path names objects, a property, and by their numbers from 0 items of collections, "
        "values\n"
        "of lists and objects without a name: Panel1.Font.Name, StatusBar1.Panels[1].Width,\n"
        "Memo1.Lines.Strings[3]. Case does not matter; the root's name may be left out.";

    CLI::App* const convert = add("convert", "Turn a form file into one of another kind", Convert);
    convert->add_option("IN", request->File, "the form file")->required();
    convert->add_option("OUT", request->Target,
                        "where the result goes, - for standard output; without it IN is replaced");
    convert
        ->add_option(
            "--to", request->Kind,
            "text, binary or resource; without it a text becomes a resource, all else a text")
        ->check(CLI::IsMember({"text", "binary", "resource"}, CLI::ignore_case));

    CLI::App* const check = add("check", "Convert there and back, and compare", Check);
    check->add_option("FILE", request->Files, "the form files")->required();
    check->footer("Each file gets a line: ok, or the first difference.");

    CLI::App* const show = add("show", "Print the tree of objects", Show);
    file(show);
    show->add_option("PATH", request->Path, "an object, with all that is in it");
    show->footer(paths);

    CLI::App* const get = add("get", "Print a property, or a whole object, as in a text", Get);
    file(get);
    get->add_option("PATH", request->Path, "what to print")->required();
    get->footer(paths);

    CLI::App* const set = add("set", "Change a property and nothing else", Set);
    file(set);
    set->add_option("PATH", request->Path, "the property, or a value of a list")->required();
    set->add_option("VALUE", request->Value, "the new value")->required();
    set->add_flag("-i,--in-place", request->InPlace,
                  "write the file back instead of printing the result");
    set->add_flag("--add", request->Add, "add the property when the object does not have it");
    set->footer(
        std::string(paths) +
        "\nVALUE is written as in a text: 12, 1.5, clRed, 'a text'#13#10, [fsBold], nil. For a "
        "string any\nVALUE that begins neither with ' nor with # stands for itself. A value of "
        "another kind than\nthe former one is refused. A VALUE that begins with - stands behind "
        "--.");
}

} // namespace tarn
