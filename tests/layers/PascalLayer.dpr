{ What KirvoImages.pas promises, by plain assertions: PascalLayer FOLDER }
program PascalLayer;

{$MODE DELPHI}
{$CODEPAGE UTF8}

uses
  cthreads, cwstring, SysUtils, Classes, Kirvo, KirvoImages;

type
  TListener = class
    First, Last, Count, Limit: Integer;
    Preview: TKirvoImage;
    procedure Report(Percent: Integer);
  end;

  TWork = class(TThread)
  private
    FImage: TKirvoImage;
    FStream: TMemoryStream;
    FWrong: Integer;
  public
    constructor Create(Image: TKirvoImage; Stream: TMemoryStream);
    procedure Execute; override;
  end;

var
  Failures: Integer = 0;

procedure Expect(Holds: Boolean; const What: string);
begin
  if Holds then
    Exit;
  WriteLn('does not hold: ', What);
  Inc(Failures);
end;

procedure TListener.Report(Percent: Integer);
begin
  if Preview <> nil then
    Preview.Crop(0, 0, 9, 9).Free; // of which nothing is reported
  if Count = 0 then
    First := Percent;
  Last := Percent;
  Inc(Count);
  if Percent >= Limit then
    raise EAbort.Create('enough');
end;

function Striped(Width, Height: Integer): TKirvoImage;
var
  X, Y: Integer;
  Row: PByte;
begin
  Result := TKirvoImage.Create(Width, Height);
  for Y := 0 to Height - 1 do
  begin
    Row := Result.ScanLine(Y);
    for X := 0 to 3 * Width - 1 do
      Row[X] := Byte(X * 7 + Y * 13);
  end;
end;

procedure EffectsGiveNewPictures;
var
  Grey, Corner: TKirvoImage;
  Low: LongWord;
begin
  Grey := TKirvoImage.Solid(4, 4, KirvoRgb(100, 100, 100));
  Expect(Grey.Brightness(20).GetPixel(3, 3) = KirvoRgb(151, 151, 151), 'brightness');
  Expect(Grey.Negative(0, 0, 2).GetPixel(1, 3) = KirvoRgb(155, 155, 155), 'negative');
  Expect(Grey.Negative(0, 0, 2).GetPixel(2, 3) = KirvoRgb(100, 100, 100), 'outside the area');
  Expect(Grey.GetPixel(1, 3) = KirvoRgb(100, 100, 100), 'its own picture');
  Corner := TKirvoImage.Create(3, 2);
  Corner.SetPixel(0, 0, KirvoRgb(1, 2, 3));
  Expect(PByte(Corner.ScanLine(0))^ = 3, 'the top row');
  Expect(Corner.Flip.GetPixel(0, 1) = KirvoRgb(1, 2, 3), 'flip');
  Expect(Corner.Filter3x3([1, 0, 0, 0, 0, 0, 0, 0, 0]).GetPixel(1, 1) = KirvoRgb(1, 2, 3), 'kernel');
  Expect(Corner.Histogram.Blue[3] = 1, 'histogram');
  Expect(Corner.CountColours = 2, 'colours');
  Expect(Corner.Separate[2].GetPixel(0, 0) = KirvoRgb(0, 0, 3), 'separate');
  Low := KirvoPacked(KirvoRange(0, 2));
  Expect(Corner.KeepChannels(Low, Low, Low).GetPixel(0, 0) = KirvoRgb(1, 2, 0), 'keep channels');
  Expect(Corner.KeepColours($102, KirvoRange(0, 2), KirvoRange(0, 2), KirvoRange(0, 2))
    .GetPixel(0, 0) = 0, 'keep colours');
end;

procedure OtherDepthsBecome24BitsFirst;
var
  Palette: TKirvoImage;
begin
  Palette := TKirvoImage.Create(5, 4, 8);
  Expect(Palette.Sharpen.Bits = 24, 'sharpen');
  Expect(Palette.Crop(0, 0, 2, 2).Bits = 8, 'crop');
  Expect(Palette.ExclusiveOr(5).GetPixel(4, 3) = 5, 'exclusive or');
  Expect(TKirvoImage.Create(2, 2, 1).Reduce16.Bits = 4, 'reduce');
  Palette.Compose(TKirvoImage.Solid(5, 4, 9));
  Expect((Palette.Bits = 24) and (Palette.GetPixel(0, 0) = 9), 'compose');
end;

procedure ErrorsSayWhatAndWhy;
begin
  try
    TKirvoImage.Create(3, 2).Brightness(101);
    Expect(False, 'an error');
  except
    on Error: EKirvo do
    begin
      Expect(Error.Status = KIRVO_BAD_PARAMETER, 'status');
      Expect(Pos('Brightness: ', Error.Message) = 1, Error.Message);
      Expect(Pos('out of its range', Error.Message) > 0, Error.Message);
    end;
  end;
  try
    TKirvoImage.Open('写真 missing.jpg');
    Expect(False, 'an error');
  except
    on Error: EKirvo do
      Expect(Pos(UTF8Encode(UnicodeString('写真 missing.jpg: ')), Error.Message) = 1, Error.Message);
  end;
end;

procedure FilesAndStreams(const Folder: string);
var
  Image: TKirvoImage;
  Stream: TMemoryStream;
  Name: TKirvoText;
begin
  Image := Striped(7, 5);
  Name := TKirvoText(Folder) + '/写真 ü.bmp';
  Image.Save(Name);
  Expect(FileExists(Name), 'the file');
  Expect(TKirvoImage.Open(Name).GetPixel(6, 4) = Image.GetPixel(6, 4), 'its pixels');
  Stream := TMemoryStream.Create;
  Image.SaveToStream(Stream, 'png');
  Stream.Position := 0;
  Expect(TKirvoImage.OpenStream(Stream).GetPixel(6, 4) = Image.GetPixel(6, 4), 'a stream');
end;

procedure ProgressMayRaise;
var
  Image: TKirvoImage;
  Listener: TListener;
  Stream: TMemoryStream;
  Round, Before: Integer;
  Arrived: Boolean;
begin
  Image := Striped(64, 400);
  Listener := TListener.Create;
  Listener.Limit := 1000;
  KirvoListen(Listener.Report);
  Image.Blur.Free;
  Expect((Listener.First = 0) and (Listener.Last = 100) and (Listener.Count > 2), 'progress');
  Listener.Preview := Image;
  Listener.Count := 0;
  Image.Sharpen.Free;
  Expect((Listener.Count > 5) and (Listener.Count <= 21), 'what a report does is not reported');
  Listener.Preview := nil;
  Listener.Limit := 20;
  for Round := 1 to 2 do
  begin
    Arrived := False;
    Stream := TMemoryStream.Create;
    try
      if Round = 1 then
        Image.Sharpen
      else
        Image.SaveToStream(Stream, 'jpg');
    except
      on EAbort do
        Arrived := True;
    end;
    Expect(Arrived, 'what the report raises');
  end;
  KirvoListen(nil);
  Before := Listener.Count;
  Image.SaveToStream(Stream, 'jpg');
  Expect((Stream.Size > 100) and (Listener.Count = Before), 'the codec is free again');
end;

constructor TWork.Create(Image: TKirvoImage; Stream: TMemoryStream);
begin
  FImage := Image;
  FStream := TMemoryStream.Create;
  FStream.Write(Stream.Memory^, Stream.Size);
  inherited Create(False);
end;

procedure TWork.Execute;
var
  Round: Integer;
  Decoded, Blurred: TKirvoImage;
begin
  for Round := 1 to 20 do
    try
      FStream.Position := 0;
      Decoded := TKirvoImage.OpenStream(FStream);
      Blurred := Decoded.Blur;
      FWrong := FWrong + Ord(Blurred.Width <> 300);
      Blurred.Free;
      Decoded.Free;
    except
      Inc(FWrong);
    end;
end;

procedure ThreadsTakeTurns;
var
  Stream: TMemoryStream;
  Work: array [0..3] of TWork;
  Index: Integer;
begin
  Stream := TMemoryStream.Create;
  Striped(300, 200).SaveToStream(Stream, 'jpg');
  for Index := 0 to 3 do
    Work[Index] := TWork.Create(nil, Stream);
  for Index := 0 to 3 do
  begin
    Work[Index].WaitFor;
    Expect(Work[Index].FWrong = 0, 'a thread');
  end;
end;

begin
  EffectsGiveNewPictures;
  OtherDepthsBecome24BitsFirst;
  ErrorsSayWhatAndWhy;
  FilesAndStreams(ParamStr(1));
  ProgressMayRaise;
  ThreadsTakeTurns;
  Halt(Ord(Failures > 0));
end.
