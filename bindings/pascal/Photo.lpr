{ A photo made ready for a page, 800 pixels wide: Photo IN OUT.png

  Built with lazbuild, which has been shown the package kirvo_lazarus.lpk before:

      lazbuild --add-package-link kirvo_lazarus.lpk
      KIRVO_LIBRARIES=<folder of libkirvo.so> lazbuild photo.lpi }
program Photo;

{$MODE DELPHI}

uses
  {$IFDEF UNIX} cthreads, cwstring, {$ENDIF}
  Interfaces, SysUtils, Graphics, Kirvo, KirvoImages, KirvoBitmaps;

type
  TDisplay = class
    procedure Show(Percent: Integer);
  end;

procedure TDisplay.Show(Percent: Integer);
begin
  Write(' ', Percent, '%');
end;

procedure MakeReady(const Source: TKirvoText; const Target: string; Display: TDisplay);
var
  Photo, Part, Small, Page: TKirvoImage;
  Picture: TPicture;
begin
  KirvoListen(Display.Show);
  Photo := TKirvoImage.Open(Source); // upright, as its camera was held
  Part := Photo.Crop(Photo.Width div 20, Photo.Height div 20, Photo.Width * 9 div 10, Photo.Height * 9 div 10);
  Small := Part.Resize(800, Part.Height * 800 div Part.Width);
  Page := Small.Sharpen;
  Picture := TPicture.Create;
  KirvoToPicture(Page, Picture);
  Picture.SaveToFile(Target);
  KirvoListen(nil);
  Photo.Free; Part.Free; Small.Free; Page.Free; Picture.Free; // after an error the program ends
end;

begin
  try
    MakeReady(TKirvoText(UTF8Decode(ParamStr(1))), ParamStr(2), TDisplay.Create);
  except
    on Error: EKirvo do
    begin
      WriteLn(StdErr, Error.Message);
      Halt(1);
    end;
  end;
end.
