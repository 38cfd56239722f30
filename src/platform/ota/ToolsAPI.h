#pragma once

#include "rtl/Interfaces.h"
#include "vcl/Forms.h"

#include <span>

// The IDE's Open Tools API: how a wizard sees the IDE. Interfaces only; the IDE implements them.
// Rows and columns are 1-based; a column is one byte of the line, a tab included. Results are null
// when the IDE does not have the thing.

namespace tarn {

class IOTAModule;
class IOTAProject;
class IOTAEditView;
class IOTAEditBuffer;

/// What the IDE tells a wizard about its own life.
class IOTANotifier : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{47EAA099-2CB6-416D-86DC-283CF0480FF9}"};

    virtual void AfterSave() = 0;
    virtual void BeforeSave() = 0;
    virtual void Destroyed() = 0;
    virtual void Modified() = 0;

protected:
    ~IOTANotifier() = default;
};

enum TWizardStateFlag : std::uint8_t { wsEnabled, wsChecked };
using TWizardState = TSet<TWizardStateFlag>;

/// An add-in of the IDE.
class IOTAWizard : public IOTANotifier {
public:
    using Parent = IOTANotifier;
    static constexpr TGUID IID{"{1509BB0A-9BF1-4331-8A11-8783593942A4}"};

    virtual std::string GetIDString() = 0;
    virtual std::string GetName() = 0;
    virtual TWizardState GetState() = 0;
    virtual void Execute() = 0;

protected:
    ~IOTAWizard() = default;
};

/// The wizards that the IDE holds.
class IOTAWizardServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{F5EC52ED-0108-4475-92E1-BC7656670B14}"};

    /// The IDE holds the wizard from now on; returns its index.
    virtual int AddWizard(const TIntf<IOTAWizard>& wizard) = 0;
    virtual void RemoveWizard(int index) = 0;

protected:
    ~IOTAWizardServices() = default;
};

/// The visible parts of the IDE; owned by the IDE.
class INTAServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{59BA1B0D-5C90-4158-A909-406C2E416788}"};

    virtual TMainMenu* GetMainMenu() = 0;
    virtual TActionList* GetActionList() = 0;
    virtual TImageList* GetImageList() = 0;

protected:
    ~INTAServices() = default;
};

/// One file of a module, as it is being edited.
class IOTAEditor : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{5D32FE61-985F-44E7-AA09-5EE82BB29976}"};

    virtual std::string GetFileName() = 0;
    virtual TIntf<IOTAModule> GetModule() = 0;
    virtual bool GetModified() = 0;
    virtual void Show() = 0; ///< brings the editor to the front

protected:
    ~IOTAEditor() = default;
};

/// An editor of source text.
class IOTASourceEditor : public IOTAEditor {
public:
    using Parent = IOTAEditor;
    static constexpr TGUID IID{"{9A1E40B4-5815-4A99-99E2-D15364C7A500}"};

    virtual int GetEditViewCount() = 0;
    virtual TIntf<IOTAEditView> GetEditView(int index) = 0; ///< 0-based

protected:
    ~IOTASourceEditor() = default;
};

/// The designer of an open form.
class IFormDesigner : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{68B4AEF7-3EAA-4E17-9D8A-4EACE693AE2D}"};

    virtual TComponent* GetRoot() = 0;

protected:
    ~IFormDesigner() = default;
};

/// An editor of a form file.
class IOTAFormEditor : public IOTAEditor {
public:
    using Parent = IOTAEditor;
    static constexpr TGUID IID{"{142C8364-7806-4577-93E7-83E7EB04B39B}"};

    /// The form under design; owned by the IDE.
    virtual TForm* GetForm() = 0;
    virtual TIntf<IFormDesigner> GetFormDesigner() = 0;

protected:
    ~IOTAFormEditor() = default;
};

/// The editor of a project's resource file.
class IOTAProjectResource : public IOTAEditor {
public:
    using Parent = IOTAEditor;
    static constexpr TGUID IID{"{3B041641-1788-44F2-A60D-F25453FE2E85}"};

protected:
    ~IOTAProjectResource() = default;
};

/// The options of an edit buffer.
class IOTABufferOptions : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{00A154D8-5ED8-4BCC-B5C7-19C2ADD9CA88}"};

    virtual bool GetAutoIndent() = 0;
    virtual void SetAutoIndent(bool value) = 0;

protected:
    ~IOTABufferOptions() = default;
};

/// A source text in memory.
class IOTAEditBuffer : public IOTASourceEditor {
public:
    using Parent = IOTASourceEditor;
    static constexpr TGUID IID{"{C0290103-855D-4F55-99EC-8712E8E3574F}"};

    virtual TIntf<IOTABufferOptions> GetBufferOptions() = 0;
    virtual TIntf<IOTAEditView> GetTopView() = 0;

protected:
    ~IOTAEditBuffer() = default;
};

/// A window that holds edit views.
class INTAEditWindow : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{6E704245-A4FF-41E3-A794-9B80DCB0B82E}"};

    virtual TForm* GetForm() = 0; ///< owned by the IDE

protected:
    ~INTAEditWindow() = default;
};

/// The cursor of an edit view. It may stand beyond the end of a line.
class IOTAEditPosition : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{DE1B1471-320A-48EA-B7A7-88D106762832}"};

    virtual int GetRow() = 0;
    virtual int GetColumn() = 0;
    /// The character at the cursor; CR at and beyond the end of a line.
    virtual char GetCharacter() = 0;
    /// Puts the cursor there and drops the block; a row outside the text gives the nearest one, a
    /// column below 1 gives 1. False when the place had to be changed.
    virtual bool Move(int row, int col) = 0;
    virtual bool MoveRelative(int deltaRow, int deltaCol) = 0;
    /// Inserts the text in place of the block, or at the cursor when there is none. Its line breaks
    /// take the form that prevails in the buffer. The cursor ends behind the text, the block is
    /// gone.
    virtual void InsertText(std::string_view text) = 0;

protected:
    ~IOTAEditPosition() = default;
};

enum TOTABlockType : std::uint8_t { btInclusive, btLine, btColumn, btNonInclusive, btUnknown };

/// The block (selection) of an edit view.
class IOTAEditBlock : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{4350CC17-21E5-4F21-ACD5-52A09DDBEF12}"};

    virtual TOTABlockType GetStyle() = 0;
    virtual bool GetIsValid() = 0;     ///< whether there is a block that is not empty
    virtual std::string GetText() = 0; ///< the bytes of the block as they stand; empty without one
    virtual int GetStartingRow() = 0;
    virtual int GetStartingColumn() = 0;
    virtual int GetEndingRow() = 0;
    virtual int GetEndingColumn() = 0; ///< the column behind the last character
    /// Moves the cursor's end of the block to that place; a block begins at the cursor when there
    /// is none.
    virtual bool Extend(int row, int col) = 0;

protected:
    ~IOTAEditBlock() = default;
};

/// A buffer shown in a window: cursor, block and scroll position.
class IOTAEditView : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{9ED89EDD-D684-4325-B600-E6129EC04ECE}"};

    virtual TIntf<IOTAEditBlock> GetBlock() = 0;
    virtual TIntf<IOTAEditBuffer> GetBuffer() = 0;
    virtual TIntf<IOTAEditPosition> GetPosition() = 0;
    virtual TIntf<INTAEditWindow> GetEditWindow() = 0;
    virtual int GetTopRow() = 0;
    virtual int GetBottomRow() = 0; ///< the last row shown
    virtual void Scroll(int deltaRow,
                        int deltaCol) = 0; ///< positive rows show what is further down
    virtual void Paint() = 0;

protected:
    ~IOTAEditView() = default;
};

/// The source editors of the IDE.
class IOTAEditorServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{627BF322-5FAC-4CB6-A34A-CB115EE347DD}"};

    virtual TIntf<IOTAEditBuffer> GetTopBuffer() = 0;
    virtual TIntf<IOTAEditView> GetTopView() = 0;

protected:
    ~IOTAEditorServices() = default;
};

/// A unit, form or project that is open.
class IOTAModule : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{A930D55D-9545-40F3-AE88-9FE46F2C7A8C}"};

    virtual std::string GetFileName() = 0;
    virtual int GetModuleFileCount() = 0;
    virtual TIntf<IOTAEditor> GetModuleFileEditor(int index) = 0; ///< 0-based; may be null
    virtual int GetOwnerCount() = 0;
    virtual TIntf<IOTAProject>
    GetOwner(int index) = 0; ///< a project that holds the module; 0-based
    /// Closes the module, after the user was asked about changes that are not saved; false when it
    /// stays open. Raises what saving it raises.
    virtual bool Close() = 0;

protected:
    ~IOTAModule() = default;
};

/// A project's entry for one of its units; the unit need not be open.
class IOTAModuleInfo : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{43F2F193-6E85-4F08-B592-7B0FE339D309}"};

    virtual std::string GetName() = 0; ///< the unit's name
    virtual std::string GetFileName() = 0;
    virtual std::string GetFormName() = 0;
    virtual std::string GetDesignClass() = 0;
    /// Opens the unit; null when its file cannot be read, which the IDE has shown then.
    virtual TIntf<IOTAModule> OpenModule() = 0;

protected:
    ~IOTAModuleInfo() = default;
};

/// An open project.
class IOTAProject : public IOTAModule {
public:
    using Parent = IOTAModule;
    static constexpr TGUID IID{"{990D3CD8-381D-422F-850C-86BD84E0164B}"};

    virtual int GetModuleCount() = 0;
    virtual TIntf<IOTAModuleInfo> GetModule(int index) = 0; ///< 0-based

protected:
    ~IOTAProject() = default;
};

/// An open group of projects.
class IOTAProjectGroup : public IOTAModule {
public:
    using Parent = IOTAModule;
    static constexpr TGUID IID{"{E07CB579-3E7F-497B-BCC1-C0C8B0CDF20A}"};

    virtual int GetProjectCount() = 0;
    virtual TIntf<IOTAProject> GetProject(int index) = 0; ///< 0-based
    virtual TIntf<IOTAProject> GetActiveProject() = 0;

protected:
    ~IOTAProjectGroup() = default;
};

/// What is open in the IDE, in the order of opening.
class IOTAModuleServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{78F6D824-86EA-4214-B5C3-4E7E77CA4499}"};

    virtual int GetModuleCount() = 0;
    virtual TIntf<IOTAModule> GetModule(int index) = 0; ///< 0-based
    virtual TIntf<IOTAModule> CurrentModule() = 0;

protected:
    ~IOTAModuleServices() = default;
};

/// The IDE's own commands on files.
class IOTAActionServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{1DCD327F-761E-47CB-BB7E-8913655C1D15}"};

    /// Opens the file in the editor, or shows it when it is open; false when it cannot be read.
    virtual bool OpenFile(std::string_view fileName) = 0;
    virtual bool SaveFile(std::string_view fileName) = 0;
    virtual bool CloseFile(std::string_view fileName) = 0;

protected:
    ~IOTAActionServices() = default;
};

/// Where a bound key was pressed.
class IOTAKeyContext : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{9672BE1A-7FED-4BB9-A92F-A271DBC52933}"};

    virtual TIntf<IOTAEditBuffer> GetEditBuffer() = 0;

protected:
    ~IOTAKeyContext() = default;
};

enum TKeyBindingResult : std::uint8_t { krUnhandled, krHandled, krNextProc };
enum TBindingType : std::uint8_t { btPartial, btComplete };
inline constexpr int kfImplicitShift = 1;

using TKeyBindingProc =
    TMethod<void(IOTAKeyContext& context, TShortCut keyCode, TKeyBindingResult& result)>;

/// How a binding names its keys; valid during BindKeyboard.
class IOTAKeyBindingServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{C44A66F4-CF25-4346-9CBE-4F50BDBCDA98}"};

    /// \param flags kf... values
    virtual bool AddKeyBinding(std::span<const TShortCut> keys, TKeyBindingProc handler,
                               void* context, int flags, std::string_view keyboard,
                               std::string_view menuItem) = 0;

protected:
    ~IOTAKeyBindingServices() = default;
};

/// A set of keys that a wizard adds to the editor.
class IOTAKeyboardBinding : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{1E2ED6CB-6470-4F1F-934B-8DB4B18FBDB1}"};

    virtual TBindingType GetBindingType() = 0;
    virtual std::string GetDisplayName() = 0;
    virtual std::string GetName() = 0;
    virtual void BindKeyboard(const TIntf<IOTAKeyBindingServices>& services) = 0;

protected:
    ~IOTAKeyboardBinding() = default;
};

/// The keyboard bindings of the editor.
class IOTAKeyboardServices : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{4F859933-FDF0-445F-97E4-85B6761978DD}"};

    /// The number of the binding, -1 when it is refused, as when its name is taken, or it binds no
    /// key.
    virtual int AddKeyboardBinding(const TIntf<IOTAKeyboardBinding>& binding) = 0;
    virtual void RemoveKeyboardBinding(int index) = 0;

protected:
    ~IOTAKeyboardServices() = default;
};

/// The base of wizards and notifiers: a counted object whose notifications do nothing.
template <class I> class TNotifierObject : public TInterfacedObject<I> {
public:
    void AfterSave() override {}
    void BeforeSave() override {}
    void Destroyed() override {}
    void Modified() override {}
};

/// The IDE's global service object, asked for one service interface after the other; null while
/// there is no IDE.
const TIntf<IInterface>& IDEServices();
/// Called by the IDE: installs its service object, or takes it out with null.
void SetIDEServices(TIntf<IInterface> services);

/// The IDE's service of that interface; null when the IDE does not offer it.
template <class I> TIntf<I> IDEService() {
    return Supports<I>(IDEServices());
}

/// Hands a wizard to the IDE, which holds it until the package is unloaded. Raises
/// EInvalidOperation when there is no IDE to take it.
void RegisterPackageWizard(const TIntf<IOTAWizard>& wizard);

} // namespace tarn
