#pragma once

#include "ScriptSource.h"
#include "TSession.h"
#include "TTempFolder.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tarn {

/// Plays scripts of IDE actions and prints what a user would see.
class TScript {
public:
    using TOutput = std::function<void(std::string_view text)>;

    /// \param folder where the names of a script's files are looked up
    /// \param output takes what the script prints, in whole lines
    /// \param console shows the dialogs that the script has queued no answer for, and outlives the
    /// object; null, for a script that plays the same way each time, shows them nowhere
    TScript(std::filesystem::path folder, TOutput output, TUserDialogs* console = nullptr);
    TScript(const TScript&) = delete;
    TScript& operator=(const TScript&) = delete;

    TSession& Session() { return FSession; }
    /// Called after each statement, for a front end that shows what it has done.
    std::function<void()> OnStatement;
    /// Takes a picture of what is on the screen under that name, with the menu that holds the item
    /// open unless it is null; empty: nothing is on a screen.
    std::function<void(const std::string& name, TMenuItem* item)> OnPicture;

    /// Plays the text to its end. Raises EScriptError "LINE: text" at the first statement that
    /// fails.
    void Play(std::string_view text);

    /// What each verb and each topic of print does, for the help of the command line.
    static std::string Help();

private:
    struct TVerb;
    struct TTopic;
    struct TTables;

    void RunNext();
    void Run(const TStatement& statement);
    /// Plays on while a modal form is open; what fails there passes on from the statement that
    /// opened it.
    void RunModal(TForm& form);
    std::string Print(const std::vector<std::string>& args);
    /// The verb cpu.
    void RunCpu(const std::vector<std::string>& args);
    /// A file of the scratch folder, or else of the script's own.
    std::filesystem::path FileOf(std::string_view name) const;
    /// The text without the folders of the script's files, which differ from run to run.
    std::string Shortened(std::string text) const;
    /// A file to be made in the scratch folder; its name is a plain one.
    std::filesystem::path ScratchFile(std::string_view name) const;
    void NoteOriginal();
    /// The first and last row of "A-B", of "A", or of the whole text when the argument is missing.
    std::pair<int, int> Rows(const std::vector<std::string>& args, std::size_t index);

    std::vector<TStatement> FStatements;
    std::size_t FNext = 0;
    std::exception_ptr FFailure; ///< of a statement that was played in a modal form
    TTempFolder FScratch;        ///< outlives the session, which has its files open
    TSession FSession;
    std::filesystem::path FFolder;
    TOutput FOutput;
    std::map<std::string, std::string> FOriginals; ///< the texts as they were opened, by file
    std::string FSettingsSeen;                     ///< by the topic changes
    std::size_t FDialogsSeen = 0;
    int FBeepsSeen = 0;
};

} // namespace tarn
