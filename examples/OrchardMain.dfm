object OrchardForm: TOrchardForm
  Left = 240
  Top = 128
  Width = 520
  Height = 380
  Caption = 'Orchard'
  Color = clBtnFace
  Font.Charset = DEFAULT_CHARSET
  Font.Color = clWindowText
  Font.Height = -11
  Font.Name = 'Sans'
  Font.Style = []
  Menu = MainMenu
  OldCreateOrder = False
  OnCloseQuery = FormCloseQuery
  OnCreate = FormCreate
  OnDestroy = FormDestroy
  PixelsPerInch = 96
  TextHeight = 13
  object TreeList: TListView
    Left = 8
    Top = 8
    Width = 361
    Height = 297
    Columns = <
      item
        Caption = 'Sort'
        Width = 180
      end
      item
        Caption = 'Row'
      end
      item
        Alignment = taRightJustify
        Caption = 'Yield, kg'
        Width = 80
      end>
    ReadOnly = True
    RowSelect = True
    TabOrder = 0
    ViewStyle = vsReport
  end
  object SortEdit: TEdit
    Left = 384
    Top = 8
    Width = 121
    Height = 21
    TabOrder = 1
  end
  object RowEdit: TEdit
    Left = 384
    Top = 36
    Width = 49
    Height = 21
    TabOrder = 2
    Text = '1'
  end
  object PlantButton: TButton
    Left = 384
    Top = 68
    Width = 75
    Height = 25
    Caption = '&Plant'
    Default = True
    TabOrder = 3
    OnClick = PlantButtonClick
  end
  object FellButton: TButton
    Left = 384
    Top = 100
    Width = 75
    Height = 25
    Caption = '&Fell'
    TabOrder = 4
    OnClick = FellButtonClick
  end
  object StatusBar: TStatusBar
    Left = 0
    Top = 315
    Width = 512
    Height = 19
    Panels = <>
    SimplePanel = True
  end
  object MainMenu: TMainMenu
    Left = 392
    Top = 144
    object FileMenu: TMenuItem
      Caption = '&File'
      object OpenItem: TMenuItem
        Caption = '&Open...'
        ShortCut = 16463
        OnClick = OpenItemClick
      end
      object SaveItem: TMenuItem
        Caption = '&Save...'
        ShortCut = 16467
        OnClick = SaveItemClick
      end
      object ExitItem: TMenuItem
        Caption = 'E&xit'
        OnClick = ExitItemClick
      end
    end
  end
  object OpenDialog: TOpenDialog
    DefaultExt = 'tre'
    Filter = 'Tree registers|*.tre'
    Left = 424
    Top = 144
  end
  object SaveDialog: TSaveDialog
    DefaultExt = 'tre'
    Filter = 'Tree registers|*.tre'
    Left = 456
    Top = 144
  end
end
