unit Seasons;

{ ¬ремена года в саду: когда обрезать, когда собирать урожай. }

interface

uses
  SysUtils;

type
  TSeason = (seWinter, seSpring, seSummer, seAutumn);
  TSeasons = set of TSeason;

  TSeasonInfo = record
    Name: string;
    FirstMonth: Integer;
    Work: string;
  end;

const
  PruningSeasons: TSeasons = [seWinter, seSpring]; // обрезка до цветени€

  SeasonInfo: array[TSeason] of TSeasonInfo = (
    (Name: 'winter'; FirstMonth: 12; Work: 'prune; mend the ladders'),
    (Name: 'spring'; FirstMonth: 3; Work: 'plant; graft'),
    (Name: 'summer'; FirstMonth: 6; Work: 'water; thin the fruit'),
    (Name: 'autumn'; FirstMonth: 9; Work: 'pick; press; plant'));

function SeasonOf(Day: TDateTime): TSeason;
function SeasonTitle(Season: TSeason): string;
function MayPrune(Day: TDateTime): Boolean;
function DaysLeft(Day: TDateTime): Integer;

implementation

function SeasonOf(Day: TDateTime): TSeason;
var
  Year, Month, DayOfMonth: Word;
begin
  DecodeDate(Day, Year, Month, DayOfMonth);
  case Month of
    3..5: Result := seSpring;
    6..8: Result := seSummer;
    9..11: Result := seAutumn;
  else
    Result := seWinter; // декабрь, €нварь, февраль
  end;
end;

function SeasonTitle(Season: TSeason): string;
begin
  with SeasonInfo[Season] do
    Result := UpperCase(Copy(Name, 1, 1)) + Copy(Name, 2, MaxInt) + ': ' + Work;
end;

function MayPrune(Day: TDateTime): Boolean;
begin
  Result := SeasonOf(Day) in PruningSeasons;
end;

{ —колько дней осталось до конца сезона, включа€ сегодн€шний. }
function DaysLeft(Day: TDateTime): Integer;
var
  Season: TSeason;
begin
  Season := SeasonOf(Day);
  Result := 0;
  while SeasonOf(Day + Result) = Season do
    Inc(Result);
end;

end.
