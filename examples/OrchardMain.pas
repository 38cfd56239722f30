unit OrchardMain;

interface

uses
  SysUtils, Classes, Controls, Forms, Dialogs, StdCtrls, ComCtrls, Menus,
  Trees, Ledger, Seasons;

type
  TOrchardForm = class(TForm)
    TreeList: TListView;
    StatusBar: TStatusBar;
    SortEdit: TEdit;
    RowEdit: TEdit;
    PlantButton: TButton;
    FellButton: TButton;
    MainMenu: TMainMenu;
    FileMenu: TMenuItem;
    OpenItem: TMenuItem;
    SaveItem: TMenuItem;
    ExitItem: TMenuItem;
    OpenDialog: TOpenDialog;
    SaveDialog: TSaveDialog;
    procedure FormCreate(Sender: TObject);
    procedure FormDestroy(Sender: TObject);
    procedure FormCloseQuery(Sender: TObject; var CanClose: Boolean);
    procedure PlantButtonClick(Sender: TObject);
    procedure FellButtonClick(Sender: TObject);
    procedure OpenItemClick(Sender: TObject);
    procedure SaveItemClick(Sender: TObject);
    procedure ExitItemClick(Sender: TObject);
  private
    FTrees: TTreeRegister;
    FLedger: TLedger;
    procedure RegisterChanged(Sender: TObject);
    procedure ShowTotals;
  end;

var
  OrchardForm: TOrchardForm;

implementation

{$R *.DFM}

procedure TOrchardForm.FormCreate(Sender: TObject);
begin
  FTrees := TTreeRegister.Create;
  FTrees.OnChange := RegisterChanged;
  FLedger := TLedger.Create;
  ShowTotals;
end;

procedure TOrchardForm.FormDestroy(Sender: TObject);
begin
  FLedger.Free;
  FTrees.Free;
end;

procedure TOrchardForm.FormCloseQuery(Sender: TObject; var CanClose: Boolean);
begin
  CanClose := not FTrees.Modified or
    (MessageDlg('Leave without saving the register?', mtConfirmation,
      [mbYes, mbNo], 0) = mrYes);
end;

procedure TOrchardForm.PlantButtonClick(Sender: TObject);
var
  Row: Integer;
begin
  Row := StrToIntDef(RowEdit.Text, 0);
  if (Row < 1) or (Trim(SortEdit.Text) = '') then
  begin
    MessageDlg('A tree needs a sort and a row; rows count from 1.', mtError,
      [mbOK], 0);
    Exit;
  end;
  FTrees.Plant(fkApple, Trim(SortEdit.Text), Row, FTrees.Count + 1, Date);
  FLedger.Enter(Date, 'planted {' + SortEdit.Text + '}', -450);
end;

procedure TOrchardForm.FellButtonClick(Sender: TObject);
begin
  if TreeList.Selected <> nil then
    FTrees.Fell(TreeList.Selected.Index);
end;

procedure TOrchardForm.OpenItemClick(Sender: TObject);
var
  Lines: TStringList;
begin
  if not OpenDialog.Execute then Exit;
  Lines := TStringList.Create;
  try
    Lines.LoadFromFile(OpenDialog.FileName);
    FTrees.LoadFromStrings(Lines);
  finally
    Lines.Free;
  end;
end;

procedure TOrchardForm.SaveItemClick(Sender: TObject);
var
  Lines: TStringList;
begin
  if not SaveDialog.Execute then Exit;
  Lines := TStringList.Create;
  try
    FTrees.SaveToStrings(Lines);
    Lines.SaveToFile(SaveDialog.FileName);
  finally
    Lines.Free;
  end;
end;

procedure TOrchardForm.ExitItemClick(Sender: TObject);
begin
  Close;
end;

procedure TOrchardForm.RegisterChanged(Sender: TObject);
var
  I: Integer;
  Item: TListItem;
begin
  TreeList.Items.BeginUpdate;
  try
    TreeList.Items.Clear;
    for I := 0 to FTrees.Count - 1 do
    begin
      Item := TreeList.Items.Add;
      Item.Caption := FTrees[I].Sort;
      Item.SubItems.Add(IntToStr(FTrees[I].Row));
      Item.SubItems.Add(FormatFloat('0.0', FTrees[I].Yield));
    end;
  finally
    TreeList.Items.EndUpdate;
  end;
  ShowTotals;
end;

procedure TOrchardForm.ShowTotals;
begin
  StatusBar.SimpleText := Format('%d trees; balance %s; %s',
    [FTrees.Count, MoneyText(FLedger.Balance), SeasonTitle(SeasonOf(Date))]);
end;

end.
