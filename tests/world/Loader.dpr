{ Opens every file named in its input, by the classes of Pascal, and says what became of it. }
program Loader;

{$MODE DELPHI}
{$CODEPAGE UTF8}

uses
  cthreads, cwstring, SysUtils, Kirvo, KirvoImages;

var
  Name, Answer: string;
  Opened, Image: TKirvoImage;

begin
  while not Eof do
  begin
    ReadLn(Name);
    Opened := nil;
    Image := nil;
    try
      Opened := TKirvoImage.Open(TKirvoText(Name));
      Image := Opened.Negative;
      Answer := Format('%d %d', [Image.Width, Image.Height]);
    except
      on Error: EKirvo do
        Answer := Error.Message;
    end;
    Image.Free;
    Opened.Free;
    WriteLn(Name, #9, Answer);
  end;
end.
