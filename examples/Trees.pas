unit Trees;

{ The register of trees: what stands where, since when, and what it bears. }

interface

uses
  SysUtils, Classes;

type
  TFruitKind = (fkApple, fkPear, fkPlum, fkQuince);

  ETreeError = class(Exception);

  TTree = class(TObject)
  private
    FKind: TFruitKind;
    FSort: string;
    FRow, FPlace: Integer;
    FPlanted: TDateTime;
    FYield: Double;
  public
    property Kind: TFruitKind read FKind;
    property Sort: string read FSort;
    property Row: Integer read FRow;
    property Place: Integer read FPlace;
    property Planted: TDateTime read FPlanted;
    property Yield: Double read FYield write FYield; // kilograms a year
  end;

  TTreeRegister = class(TObject)
  private
    FItems: TList;
    FModified: Boolean;
    FOnChange: TNotifyEvent;
    function GetCount: Integer;
    function GetItem(Index: Integer): TTree;
    procedure Changed;
  public
    procedure SaveToStrings(Lines: TStrings);
    function IndexOf(Tree: TTree): Integer;
    property Count: Integer read GetCount;
    constructor Create;
    procedure Plant(Kind: TFruitKind; const Sort: string;
      Row, Place: Integer; Planted: TDateTime);
    function FindSort(const Sort: string): TTree;
    property Items[Index: Integer]: TTree read GetItem; default;
    procedure Clear;
    destructor Destroy; override;
    function YieldOfRow(Row: Integer): Double;
    procedure Prune(Row: Integer); overload;
    property Modified: Boolean read FModified;
    function OldestTree: TTree;
    procedure Prune(Row, Place: Integer); overload;
    procedure LoadFromStrings(Lines: TStrings);
    property OnChange: TNotifyEvent read FOnChange write FOnChange;
    function CountOf(Kind: TFruitKind): Integer;
    procedure Fell(Index: Integer);
  end;

const
  FruitNames: array[TFruitKind] of string = ('apple', 'pear', 'plum', 'quince');

implementation

const
  Separator = ';';

constructor TTreeRegister.Create;
begin
  inherited Create;
  FItems := TList.Create;
end;

destructor TTreeRegister.Destroy;
begin
  FOnChange := nil;
  if FItems <> nil then Clear;
  FItems.Free;
  inherited Destroy;
end;

procedure TTreeRegister.Changed;
begin
  FModified := True;
  if Assigned(FOnChange) then FOnChange(Self);
end;

function TTreeRegister.GetCount: Integer;
begin
  Result := FItems.Count;
end;

function TTreeRegister.GetItem(Index: Integer): TTree;
begin
  Result := TTree(FItems[Index]);
end;

procedure TTreeRegister.Clear;
var
  I: Integer;
begin
  for I := 0 to Count - 1 do Items[I].Free;
  FItems.Clear;
  Changed;
end;

procedure TTreeRegister.Plant(Kind: TFruitKind; const Sort: string;
  Row, Place: Integer; Planted: TDateTime);
var
  Tree: TTree;
begin
  if Pos(Separator, Sort) > 0 then
    raise ETreeError.Create('A sort cannot contain '';''.');
  Tree := TTree.Create;
  Tree.FKind := Kind;
  Tree.FSort := Sort;
  Tree.FRow := Row;
  Tree.FPlace := Place;
  Tree.FPlanted := Planted;
  FItems.Add(Tree);
  Changed;
end;

procedure TTreeRegister.Fell(Index: Integer);
begin
  Items[Index].Free;
  FItems.Delete(Index);
  Changed;
end;

function TTreeRegister.IndexOf(Tree: TTree): Integer;
begin
  Result := FItems.IndexOf(Tree);
end;

function TTreeRegister.FindSort(const Sort: string): TTree;
var
  I: Integer;
begin
  Result := nil;
  for I := 0 to Count - 1 do
    if AnsiCompareText(Items[I].Sort, Sort) = 0 then
    begin
      Result := Items[I];
      Break;
    end;
end;

function TTreeRegister.CountOf(Kind: TFruitKind): Integer;
var
  I: Integer;
begin
  Result := 0;
  for I := 0 to Count - 1 do
    if Items[I].Kind = Kind then Inc(Result);
end;

function TTreeRegister.OldestTree: TTree;
var
  I: Integer;
begin
  Result := nil;
  for I := 0 to Count - 1 do
    if (Result = nil) or (Items[I].Planted < Result.Planted) then
      Result := Items[I];
end;

function TTreeRegister.YieldOfRow(Row: Integer): Double;
var
  I: Integer;
begin
  Result := 0;
  for I := 0 to Count - 1 do
    if Items[I].Row = Row then Result := Result + Items[I].Yield;
end;

(* Pruning costs a fifth of the next harvest; a tree that bears
   nothing yet loses nothing. *)
procedure TTreeRegister.Prune(Row: Integer);
var
  I: Integer;
begin
  for I := 0 to Count - 1 do
    if Items[I].Row = Row then Prune(Row, Items[I].Place);
end;

procedure TTreeRegister.Prune(Row, Place: Integer);
var
  I: Integer;
begin
  for I := 0 to Count - 1 do
    if (Items[I].Row = Row) and (Items[I].Place = Place) then
      Items[I].Yield := Items[I].Yield * 0.8;
  Changed;
end;

function NextField(var Line: string): string;
var
  P: Integer;
begin
  P := Pos(Separator, Line + Separator);
  Result := Copy(Line, 1, P - 1);
  Delete(Line, 1, P);
end;

procedure TTreeRegister.LoadFromStrings(Lines: TStrings);
var
  I, Row, Place: Integer;
  Kind: TFruitKind;
  Line, Sort: string;
begin
  Clear;
  for I := 0 to Lines.Count - 1 do
  begin
    Line := Lines[I];
    if Trim(Line) = '' then Continue;
    Kind := TFruitKind(StrToInt(NextField(Line)));
    Sort := NextField(Line);
    Row := StrToInt(NextField(Line));
    Place := StrToInt(NextField(Line));
    Plant(Kind, Sort, Row, Place, StrToInt(NextField(Line)));
  end;
  FModified := False;
end;

procedure TTreeRegister.SaveToStrings(Lines: TStrings);
var
  I: Integer;
begin
  Lines.Clear;
  for I := 0 to Count - 1 do
    with Items[I] do
      Lines.Add(Format('%d;%s;%d;%d;%d',
        [Ord(Kind), Sort, Row, Place, Trunc(Planted)]));
  FModified := False;
end;

end.
