unit Ledger;

interface

uses
  SysUtils, Classes;

type
  TCents = Longint;

  TEntry = class(TObject)
  public
    Day: TDateTime;
    Text: string;
    Amount: TCents;
  end;

  TLedger = class(TObject)
  private
    FEntries: TList;
    function GetEntry(Index: Integer): TEntry;
  public
    constructor Create;
    destructor Destroy; override;
    procedure Enter(Day: TDateTime; const Text: string; Amount: TCents);
    function Balance: TCents;
    function BalanceOn(Day: TDateTime): TCents;
    procedure Report(Lines: TStrings);
    property Entries[Index: Integer]: TEntry read GetEntry; default;
  end;

function MoneyText(Amount: TCents): string;

implementation

function MoneyText(Amount: TCents): string;
const
  Signs: array[Boolean] of string = ('', '-');
begin
  { Whole coins and cents apart, so that -0.05 keeps its sign. }
  Result := Format('%s%d.%.2d',
    [Signs[Amount < 0], Abs(Amount) div 100, Abs(Amount) mod 100]);
end;

constructor TLedger.Create;
begin
  inherited Create;
  FEntries := TList.Create;
end;

destructor TLedger.Destroy;
var
  I: Integer;
begin
  if FEntries <> nil then
    for I := 0 to FEntries.Count - 1 do
      Entries[I].Free;
  FEntries.Free;
  inherited Destroy;
end;

function TLedger.GetEntry(Index: Integer): TEntry;
begin
  Result := TEntry(FEntries[Index]);
end;

procedure TLedger.Enter(Day: TDateTime; const Text: string; Amount: TCents);
var
  Entry: TEntry;
begin
  Entry := TEntry.Create;
  Entry.Day := Day;
  Entry.Text := Text;
  Entry.Amount := Amount;
  FEntries.Add(Entry);
end;

function TLedger.Balance: TCents;
var
  I: Integer;
begin
  Result := 0;
  for I := 0 to FEntries.Count - 1 do
    Inc(Result, Entries[I].Amount);
end;

function TLedger.BalanceOn(Day: TDateTime): TCents;
var
  I: Integer;
begin
  Result := 0;
  for I := 0 to FEntries.Count - 1 do
    if Entries[I].Day <= Day then
      Inc(Result, Entries[I].Amount);
end;

procedure TLedger.Report(Lines: TStrings);
var
  I: Integer;
begin
  Lines.Clear;
  for I := 0 to FEntries.Count - 1 do
    with Entries[I] do
      Lines.Add(DateToStr(Day) + #9 + Text + #9 + MoneyText(Amount));
  Lines.Add('// {total}' + #9#9 + MoneyText(Balance));
end;

end.
