program Orchard;

uses
  Forms,
  OrchardMain in 'OrchardMain.pas' {OrchardForm},
  Trees in 'Trees.pas',
  Ledger in 'Ledger.pas',
  Seasons in 'Seasons.pas';

{$R *.RES}

begin
  Application.Initialize;
  Application.Title := 'Orchard';
  Application.CreateForm(TOrchardForm, OrchardForm);
  Application.Run;
end.
