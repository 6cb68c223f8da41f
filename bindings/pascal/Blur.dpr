{ Opens a JPEG file, blurs it and saves it as a BMP file: Blur IN.JPG OUT.BMP

  Delphi: open as a project. Free Pascal: fpc -Fl<folder of libkirvo.so> Blur.dpr }
program Blur;

{$IFDEF FPC} {$MODE DELPHI} {$ENDIF}
{$APPTYPE CONSOLE}

uses
  {$IFDEF MSWINDOWS} Windows, {$ENDIF} SysUtils, Kirvo;

procedure ShowProgress(percent: LongInt);
begin
  Write(' ', percent, '%');
  if percent = 100 then
    WriteLn;
end;

procedure BlurFile(const source, target: AnsiString);
var
  photo, blurred: HGLOBAL;
  width, height: LongWord;
  status: LongInt;
begin
  Write('reading');
  KirvoWatch(ShowProgress);
  photo := JpgDecMainEx(PAnsiChar(source), width, height, status);
  KirvoCheck(status);
  try
    Write('blurring');
    KirvoWatch(ShowProgress);
    blurred := Dib24Gausian(photo, 0, 0, width, height, status);
    KirvoCheck(status);
    try
      KirvoCheck(DibWriteEx(PAnsiChar(target), blurred, 0, 0, -1, -1));
      WriteLn(target, ': ', width, ' x ', height);
    finally
      GlobalFree(blurred);
    end;
  finally
    GlobalFree(photo);
  end;
end;

begin
  if ParamCount <> 2 then
  begin
    WriteLn('Blur IN.JPG OUT.BMP');
    Halt(2);
  end;
  try
    BlurFile(AnsiString(ParamStr(1)), AnsiString(ParamStr(2)));
  except
    on error: Exception do
    begin
      WriteLn(ErrOutput, error.Message);
      Halt(1);
    end;
  end;
end.
