{ Kirvo: pictures opened, changed and saved, for Delphi (7 and later) and Free Pascal.

  Effects give a new picture, which the caller frees, and leave their own alone; a picture of a depth
  that an effect does not take becomes one of 24 bits first. What fails raises EKirvo. Threads take turns
  in the library. The program needs Kirvo.dll and KirvoFiles.dll on Windows, libkirvo.so and
  libkirvofiles.so elsewhere. KirvoBitmaps.pas makes and takes TBitmap and TPicture.

  Written by script/bindings from interface/: changes belong there. }
unit KirvoImages;

{$IFDEF FPC}
  {$MODE DELPHI}
  {$PACKRECORDS C}
{$ELSE}
  {$A8}
{$ENDIF}

interface

uses
  {$IFDEF MSWINDOWS} Windows, {$ENDIF} SysUtils, Classes, SyncObjs, Kirvo;

const
  KirvoFilesLibrary = {$IFDEF MSWINDOWS} 'KirvoFiles.dll' {$ELSE} 'libkirvofiles.so' {$ENDIF};

  // Opening: flags, added
  KIRVO_FILES_NO_TURN = 1;    // rows as stored, whatever the EXIF orientation says
  KIRVO_FILES_KEEP_ALPHA = 2; // a picture with alpha gets 32 bits, alpha on top
  KIRVO_FILES_KEEP_GOING = 4; // what there is of a damaged or short file
  KIRVO_FILES_NO_LIMITS = 8;  // claims of any size are believed

type
  { Text that holds every alphabet. }
  TKirvoText = {$IFDEF FPC} UnicodeString {$ELSE} {$IFDEF UNICODE} string {$ELSE} WideString
    {$ENDIF} {$ENDIF};

  { Receives percentages: 0, then steps of at least 5, and 100 at the end. What it raises ends the
    operation and arrives where that was called. }
  TKirvoProgressEvent = procedure(Percent: Integer) of object;

  { A range of values. Test: 0 anything passes, 1 what is inside, 2 what is outside. }
  TKirvoRange = record
    Lower, Upper, Test: SmallInt;
  end;

  { How often each value of each channel occurs. }
  TKirvoHistogram = record
    Red, Green, Blue: array [0..255] of LongWord;
  end;

  { How a picture is saved; what is 0 is as usual: the fields of kirvo_files.h. }
  TKirvoSaveOptions = record
    Size: LongWord;
    Format: LongInt;
    Flags, Quality, Level, Subsample, SizeLimit, Bits: LongWord;
    Compression: LongInt;
    Reserved: LongWord;
    DpiAcross, DpiDown: Double;
  end;

  TKirvoImage = class;
  TKirvoImages = array [0..2] of TKirvoImage;

  { What an effect works on, between its beginning and its end. }
  TKirvoCall = record
    Dib: HGLOBAL;
    X, Y, Width, Height: LongInt;
    Status: LongInt;
    Other: TKirvoImage; // this picture at another depth, or its copy
  end;

  { A picture: a packed DIB of 1, 4, 8, 16, 24 or 32 bits. }
  TKirvoImage = class
  private
    FDib: HGLOBAL;
    FSource: IUnknown; // what is known of the file that it came from
    function GetHeader(Index: Integer): LongInt;
    procedure Take(Status: LongInt; Dib: HGLOBAL; Known: Pointer);
    function HasDepth(const Depths: array of Integer): Boolean;
    function DepthFor(const Depths: array of Integer): Integer;
    procedure Start(out Call: TKirvoCall; const Depths: array of Integer; Copied: Boolean;
      X, Y, Width, Height: LongInt);
    procedure Finish(var Call: TKirvoCall; const Name: string);
    function FinishMade(var Call: TKirvoCall; Made: HGLOBAL; const Name: string): TKirvoImage;
    function FinishCopy(var Call: TKirvoCall; const Name: string): TKirvoImage;
    procedure Ready(const Depths: array of Integer);
    class function Fresh(Made: HGLOBAL; Status: LongInt; const Name: string): TKirvoImage;
  public
    { Takes a packed DIB over. }
    constructor Adopt(Dib: HGLOBAL; const Source: IUnknown = nil);
    { A new picture, black. }
    constructor Create(Width, Height: Integer; Bits: Integer = 24);
    { Opens a picture of any format, turned upright. }
    constructor Open(const FileName: TKirvoText; Progress: TKirvoProgressEvent = nil;
      Flags: LongWord = 0);
    { Opens what a stream holds from where it stands. }
    constructor OpenStream(Stream: TStream; Flags: LongWord = 0);
    destructor Destroy; override;

    { Saves the picture in the format that the name tells, complete or not at all. Quality: of JPEG
      and WebP, 1 to 100; 0 for the usual. }
    procedure Save(const FileName: TKirvoText; Quality: LongWord = 0); overload;
    procedure Save(const FileName: TKirvoText; const Options: TKirvoSaveOptions); overload;
    { Writes the picture as a file; Format: 'png', 'jpg', ... }
    procedure SaveToStream(Stream: TStream; const Format: AnsiString; Quality: LongWord = 0);
    { What had to be left out or repaired when the picture was opened. }
    function Notes: TKirvoText;

    { Another picture of the same pixels. }
    function Copy: TKirvoImage;
    { The picture at another depth: 16, 24 or 32 bits. }
    function Convert(Bits: Integer): TKirvoImage;
    { The address of row Y from the top, until the picture is freed or changes its depth. A pixel of
      24 bits is three bytes: blue, green, red. }
    function ScanLine(Y: Integer): Pointer;

%% for method in methods
@{ documentation(method) }@
@{ head(method, "", True, "    ") }@
%% endfor
    { Filters with a kernel of 3 x 3 weights, row by row from the top left neighbour. Divisor 0: the
      sum of the weights, or 1. }
    function Filter3x3(const Weights: array of LongInt; Divisor: LongInt = 0; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Keeps colours by ranges. Flags: $101 channels of RGB, $102 pixels of RGB, $202 pixels by hue,
      saturation and value. }
    function KeepColours(Flags: Word; const First, Second, Third: TKirvoRange;
      AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Three pictures with one channel each: red, green, blue. }
    function Separate: TKirvoImages;
    { How often each value of each channel occurs. }
    function Histogram: TKirvoHistogram;
    { The number of different colours. }
    function CountColours: LongWord;
    { A pixel's colour, $00BBGGRR. }
    function GetPixel(X, Y: Integer): LongWord;
    { The colour that Compose leaves out in mode 4, for the whole process. }
    class procedure KeyColour(Colour: LongWord);
    { The weights of Mix3x3 and Mix5x5 in tenths, row by row, for the whole process. }
    class procedure MixMasks(const Three, Five: array of LongInt);

    property Width: LongInt index 1 read GetHeader;
    property Height: LongInt index 2 read GetHeader;
    { Bits of a pixel. }
    property Bits: LongInt index 3 read GetHeader;
    { The packed DIB for the functions of the unit Kirvo; it stays owned. }
    property Handle: HGLOBAL read FDib;
  end;

{ A colour as the library writes it: $00BBGGRR. }
function KirvoRgb(Red, Green, Blue: Byte): LongWord;

{ A range; KirvoPacked makes of it what KeepChannels takes. }
function KirvoRange(Lower, Upper: SmallInt; Test: SmallInt = 1): TKirvoRange;
function KirvoPacked(const Range: TKirvoRange): LongWord;

{ This thread's operations report to a method from now on; nil ends that. }
procedure KirvoListen(Listener: TKirvoProgressEvent);

implementation

type
  TKirvoOpenOptions = record
    Size, Flags, Background, Frame: LongWord;
  end;
  PKirvoOpenOptions = ^TKirvoOpenOptions;
  PKirvoSaveOptions = ^TKirvoSaveOptions;

function KirvoFilesStatusText(Status: LongInt; Text: PAnsiChar; Capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesText(Known: Pointer; Kind: LongInt; Index: LongWord; Text: PAnsiChar;
  Capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesNote(Known: Pointer; Index: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesFormatOf(Name: PAnsiChar): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
procedure KirvoFilesClose(Known: Pointer);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesOpen(Name: PAnsiChar; Options: PKirvoOpenOptions; out Dib: HGLOBAL;
  out Known: Pointer): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesOpenMemory(Bytes: Pointer; Count: LongWord; Options: PKirvoOpenOptions;
  out Dib: HGLOBAL; out Known: Pointer): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesSave(Name: PAnsiChar; Dib: HGLOBAL; Source: Pointer; Options: PKirvoSaveOptions;
  out Known: Pointer): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;
function KirvoFilesSaveMemory(Dib: HGLOBAL; Source: Pointer; Options: PKirvoSaveOptions;
  out Block: HGLOBAL; out Count: LongWord; out Known: Pointer): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary;

type
  { What is known of a file; pictures that came from it share this. }
  IKirvoFile = interface
    ['{B6C5B0C4-41E1-4E0F-9A57-6C6D0E7C2A11}']
    function Known: Pointer;
  end;

  TKirvoFile = class(TInterfacedObject, IKirvoFile)
  private
    FKnown: Pointer;
  public
    constructor Create(Known: Pointer);
    destructor Destroy; override;
    function Known: Pointer;
  end;

constructor TKirvoFile.Create(Known: Pointer);
begin
  inherited Create;
  FKnown := Known;
end;

destructor TKirvoFile.Destroy;
begin
  KirvoFilesClose(FKnown);
  inherited Destroy;
end;

function TKirvoFile.Known: Pointer;
begin
  Result := FKnown;
end;

// One operation of the library at a time, with its progress

threadvar
  Listening: TKirvoProgressEvent;

var
  TheLibrary: TCriticalSection;
  Depth: Integer = 0;         // of operations inside each other
  Receiver: TKirvoProgressEvent;
  Raised: TObject = nil;      // what the report raised
  Last: Integer = -1;         // percentage

{ A codec stops; an effect runs to its end without further reports. }
procedure Abandon;
var
  Image: HGLOBAL;
  Bytes: LongWord;
begin
  JpgDecNext(0, 0, -1, Image);
  JpgCodNext(-1, Bytes);
  JpgCodNext_M(-1, Bytes);
end;

procedure Receive(Percent: LongInt);
begin
  if (Raised <> nil) or not Assigned(Receiver) then
    Exit;
  KirvoWatch(nil); // what the report itself does is not reported
  try
    Last := Percent;
    Receiver(Percent);
    KirvoWatch(@Receive);
  except
    Raised := TObject(AcquireExceptionObject);
    Abandon;
  end;
end;

procedure Enter;
begin
  TheLibrary.Acquire;
  Inc(Depth);
end;

procedure Leave;
begin
  Dec(Depth);
  TheLibrary.Release;
end;

{ The next call of the library is what reports; operations inside another do not. }
procedure Watch;
begin
  if (Depth > 1) or not Assigned(Listening) then
    Exit;
  Receiver := Listening;
  Last := -1;
  KirvoWatch(@Receive);
end;

{ After the call: raises what a report has raised. }
procedure Unwatch(Succeeded: Boolean);
var
  Error: TObject;
begin
  if (Depth > 1) or not Assigned(Receiver) then
    Exit;
  if Succeeded and (Last <> 100) then
    Receive(100);
  KirvoWatch(nil);
  Receiver := nil;
  Error := Raised;
  Raised := nil;
  if Error <> nil then
    raise Error;
end;

procedure KirvoListen(Listener: TKirvoProgressEvent);
begin
  Listening := Listener;
end;

procedure Refuse(Status: LongInt; const Text: string);
var
  Error: EKirvo;
begin
  Error := EKirvo.Create(Text);
  Error.Status := Status;
  raise Error;
end;

procedure Check(Status: LongInt; const Name: string);
begin
  if Status < 0 then
    Refuse(Status, Name + ': ' + KirvoMessage(Status));
end;

function Words(Known: Pointer; Kind: LongInt; Index: LongWord): TKirvoText;
var
  Text: AnsiString;
begin
  SetLength(Text, KirvoFilesText(Known, Kind, Index, nil, 0));
  KirvoFilesText(Known, Kind, Index, PAnsiChar(Text), Length(Text));
  {$IFDEF FPC}
  Result := UTF8Decode(PAnsiChar(Text));
  {$ELSE}
  Result := UTF8Decode(UTF8String(PAnsiChar(Text)));
  {$ENDIF}
end;

{ An error of a file carries the library's own words, which name the file. }
procedure CheckFile(Status: LongInt; Known: Pointer);
var
  Text: TKirvoText;
  Room: array [0..255] of AnsiChar;
begin
  if Status = KIRVO_OK then
    Exit;
  Text := '';
  if Known <> nil then
    Text := Words(Known, 0, 0);
  if Text = '' then
  begin
    KirvoFilesStatusText(Status, Room, SizeOf(Room));
    Text := TKirvoText(AnsiString(Room));
  end;
  {$IFDEF FPC}
  Refuse(Status, UTF8Encode(Text));
  {$ELSE}
  Refuse(Status, Text);
  {$ENDIF}
end;

function KirvoRgb(Red, Green, Blue: Byte): LongWord;
begin
  Result := Red or LongWord(Green) shl 8 or LongWord(Blue) shl 16;
end;

function KirvoRange(Lower, Upper: SmallInt; Test: SmallInt): TKirvoRange;
begin
  Result.Lower := Lower;
  Result.Upper := Upper;
  Result.Test := Test;
end;

function KirvoPacked(const Range: TKirvoRange): LongWord;
begin
  Result := LongWord(Range.Lower and $FF) or LongWord(Range.Upper and $FF) shl 8 or
    LongWord(Range.Test and $FF) shl 16;
end;

// TKirvoImage

constructor TKirvoImage.Adopt(Dib: HGLOBAL; const Source: IUnknown);
begin
  inherited Create;
  FDib := Dib;
  FSource := Source;
end;

constructor TKirvoImage.Create(Width, Height, Bits: Integer);
const
  Masks: array [Boolean, 0..2] of LongWord = (($F800, $07E0, $001F), ($FF0000, $00FF00, $0000FF));
var
  Address: PAnsiChar;
begin
  inherited Create;
  if Width > 0 then
    FDib := DibMemAllocEx(Width, Height, Bits);
  if FDib = 0 then
    Refuse(KIRVO_BAD_PARAMETER, 'TKirvoImage: no such size or depth, or not enough memory');
  if (Bits <> 16) and (Bits <> 32) then
    Exit;
  Address := GlobalLock(FDib);
  Move(Masks[Bits = 32], Address[40], 12);
  GlobalUnlock(FDib);
end;

procedure TKirvoImage.Take(Status: LongInt; Dib: HGLOBAL; Known: Pointer);
begin
  FDib := Dib;
  if Known <> nil then
    FSource := TKirvoFile.Create(Known) as IKirvoFile;
  Unwatch(Status = KIRVO_OK);
  CheckFile(Status, Known);
end;

constructor TKirvoImage.Open(const FileName: TKirvoText; Progress: TKirvoProgressEvent;
  Flags: LongWord);
var
  Options: TKirvoOpenOptions;
  Outer: TKirvoProgressEvent;
  Status: LongInt;
  Dib: HGLOBAL;
  Known: Pointer;
begin
  inherited Create;
  FillChar(Options, SizeOf(Options), 0);
  Options.Size := SizeOf(Options);
  Options.Flags := Flags;
  Outer := Listening;
  if Assigned(Progress) then
    Listening := Progress;
  Enter;
  try
    Watch;
    Status := KirvoFilesOpen(PAnsiChar(UTF8Encode(FileName)), @Options, Dib, Known);
    Take(Status, Dib, Known);
  finally
    Leave;
    Listening := Outer;
  end;
end;

constructor TKirvoImage.OpenStream(Stream: TStream; Flags: LongWord);
var
  Options: TKirvoOpenOptions;
  Bytes: TMemoryStream;
  Status: LongInt;
  Dib: HGLOBAL;
  Known: Pointer;
begin
  inherited Create;
  FillChar(Options, SizeOf(Options), 0);
  Options.Size := SizeOf(Options);
  Options.Flags := Flags;
  Bytes := TMemoryStream.Create;
  Enter;
  try
    if Stream.Size > Stream.Position then
      Bytes.CopyFrom(Stream, Stream.Size - Stream.Position);
    Watch;
    Status := KirvoFilesOpenMemory(Bytes.Memory, LongWord(Bytes.Size), @Options, Dib, Known);
    Take(Status, Dib, Known);
  finally
    Leave;
    Bytes.Free;
  end;
end;

destructor TKirvoImage.Destroy;
begin
  if FDib <> 0 then
    GlobalFree(FDib);
  inherited Destroy;
end;

function KnownOf(const Source: IUnknown): Pointer;
begin
  Result := nil;
  if Source <> nil then
    Result := (Source as IKirvoFile).Known;
end;

procedure TKirvoImage.Save(const FileName: TKirvoText; Quality: LongWord);
var
  Options: TKirvoSaveOptions;
begin
  FillChar(Options, SizeOf(Options), 0);
  Options.Quality := Quality;
  Save(FileName, Options);
end;

procedure TKirvoImage.Save(const FileName: TKirvoText; const Options: TKirvoSaveOptions);
var
  How: TKirvoSaveOptions;
  Status: LongInt;
  Known: Pointer;
  Kept: IKirvoFile;
begin
  How := Options;
  How.Size := SizeOf(How);
  Enter;
  try
    Watch;
    Status := KirvoFilesSave(PAnsiChar(UTF8Encode(FileName)), FDib, KnownOf(FSource), @How, Known);
    Kept := TKirvoFile.Create(Known);
    Unwatch(Status = KIRVO_OK);
    CheckFile(Status, Known);
  finally
    Leave;
  end;
end;

procedure TKirvoImage.SaveToStream(Stream: TStream; const Format: AnsiString; Quality: LongWord);
var
  How: TKirvoSaveOptions;
  Status: LongInt;
  Known: Pointer;
  Kept: IKirvoFile;
  Block: HGLOBAL;
  Count: LongWord;
begin
  FillChar(How, SizeOf(How), 0);
  How.Size := SizeOf(How);
  How.Format := KirvoFilesFormatOf(PAnsiChar(Format));
  How.Quality := Quality;
  Enter;
  try
    Watch;
    Status := KirvoFilesSaveMemory(FDib, KnownOf(FSource), @How, Block, Count, Known);
    Kept := TKirvoFile.Create(Known);
    try
      Unwatch(Status = KIRVO_OK);
      CheckFile(Status, Known);
      Stream.WriteBuffer(GlobalLock(Block)^, Count);
    finally
      GlobalUnlock(Block);
      GlobalFree(Block);
    end;
  finally
    Leave;
  end;
end;

function TKirvoImage.Notes: TKirvoText;
var
  Index: LongWord;
begin
  Result := '';
  Index := 0;
  while (FSource <> nil) and (KirvoFilesNote(KnownOf(FSource), Index) <> 0) do
  begin
    Result := Result + Words(KnownOf(FSource), 1, Index) + #10;
    Inc(Index);
  end;
end;

function TKirvoImage.GetHeader(Index: Integer): LongInt;
var
  Address: PAnsiChar;
begin
  Address := GlobalLock(FDib);
  if Address = nil then
    Refuse(KIRVO_NULL_HANDLE, KirvoMessage(KIRVO_NULL_HANDLE));
  case Index of
    1: Result := PInteger(Address + 4)^;
    2: Result := PInteger(Address + 8)^;
  else
    Result := PWord(Address + 14)^;
  end;
  GlobalUnlock(FDib);
end;

function TKirvoImage.ScanLine(Y: Integer): Pointer;
var
  Address: PAnsiChar;
  Stride: KirvoUIntPtr;
begin
  if (Y < 0) or (Y >= Height) then
    Refuse(KIRVO_BAD_PARAMETER, 'ScanLine: the picture has no such row');
  Stride := KirvoUIntPtr((Int64(Width) * Bits + 31) div 32 * 4);
  Address := GlobalLock(FDib); // which keeps its address
  GlobalUnlock(FDib);
  Result := Address + PInteger(Address)^ + PaletteSize(Address) +
    KirvoIntPtr(Stride * KirvoUIntPtr(Height - 1 - Y));
end;

function TKirvoImage.Copy: TKirvoImage;
var
  Size: KirvoUIntPtr;
  Dib: HGLOBAL;
begin
  Size := GlobalSize(FDib);
  Dib := GlobalAlloc(GHND, Size);
  if Dib = 0 then
    Check(KIRVO_NO_MEMORY, 'Copy');
  Move(GlobalLock(FDib)^, GlobalLock(Dib)^, Size);
  GlobalUnlock(FDib);
  GlobalUnlock(Dib);
  Result := TKirvoImage.Adopt(Dib, FSource);
end;

function TKirvoImage.Convert(Bits: Integer): TKirvoImage;
var
  Colour: TKirvoImage;
  Now: Integer;
  Made: HGLOBAL;
  Status: LongInt;
begin
  Now := Self.Bits;
  if (Bits <> 16) and (Bits <> 24) and (Bits <> 32) then
    Refuse(KIRVO_BAD_PARAMETER, 'Convert: 16, 24 or 32 bits');
  if Bits = Now then
    Result := Copy
  else if (Now <= 8) and (Bits <> 24) then
  begin
    Colour := Convert(24);
    try
      Result := Colour.Convert(Bits);
    finally
      Colour.Free;
    end;
  end
  else
  begin
    Enter;
    if Now <= 8 then
      Made := IncreaseColor16M(FDib, Status)
    else if Bits = 24 then
      Made := DibConvert24bit(FDib, Status)
    else if Bits = 16 then
      Made := DibConvert16bit(FDib, Status)
    else
      Made := DibConvert32bit(FDib, Status);
    Leave;
    Result := Fresh(Made, Status, 'Convert');
    Result.FSource := FSource;
  end;
end;

function TKirvoImage.HasDepth(const Depths: array of Integer): Boolean;
var
  Index: Integer;
begin
  Result := False;
  for Index := Low(Depths) to High(Depths) do
    Result := Result or (Depths[Index] = Bits);
end;

function TKirvoImage.DepthFor(const Depths: array of Integer): Integer;
begin
  Result := 24;
  if HasDepth(Depths) then
    Result := Bits;
end;

procedure TKirvoImage.Start(out Call: TKirvoCall; const Depths: array of Integer; Copied: Boolean;
  X, Y, Width, Height: LongInt);
begin
  FillChar(Call, SizeOf(Call), 0);
  Call.X := X;
  Call.Y := Y;
  Call.Width := Width;
  if Width < 0 then
    Call.Width := Self.Width - X;
  Call.Height := Height;
  if Height < 0 then
    Call.Height := Self.Height - Y;
  if not HasDepth(Depths) then
    Call.Other := Convert(24)
  else if Copied then
    Call.Other := Copy;
  Call.Dib := FDib;
  if Call.Other <> nil then
    Call.Dib := Call.Other.FDib;
  Enter;
  Watch;
end;

procedure TKirvoImage.Finish(var Call: TKirvoCall; const Name: string);
begin
  try
    Unwatch(Call.Status >= 0);
    Check(Call.Status, Name);
  finally
    Leave;
    Call.Other.Free;
  end;
end;

function TKirvoImage.FinishMade(var Call: TKirvoCall; Made: HGLOBAL; const Name: string): TKirvoImage;
begin
  if (Made = 0) and (Call.Status >= 0) then
    Call.Status := KIRVO_NO_MEMORY;
  Result := TKirvoImage.Adopt(Made, FSource);
  try
    Finish(Call, Name);
  except
    Result.Free;
    raise;
  end;
end;

function TKirvoImage.FinishCopy(var Call: TKirvoCall; const Name: string): TKirvoImage;
begin
  Result := Call.Other;
  Call.Other := nil;
  try
    Finish(Call, Name);
  except
    Result.Free;
    raise;
  end;
end;

procedure TKirvoImage.Ready(const Depths: array of Integer);
var
  Other: TKirvoImage;
begin
  if HasDepth(Depths) then
    Exit;
  Other := Convert(24);
  GlobalFree(FDib);
  FDib := Other.FDib;
  Other.FDib := 0;
  Other.Free;
end;

class function TKirvoImage.Fresh(Made: HGLOBAL; Status: LongInt; const Name: string): TKirvoImage;
begin
  if Made = 0 then
  begin
    if Status >= 0 then
      Status := KIRVO_NO_MEMORY;
    Check(Status, Name);
  end;
  Result := TKirvoImage.Adopt(Made, nil);
end;

%% for method in methods
%% set name = capitals(method.name)
@{ head(method, "TKirvoImage.", False, "") }@
var
%% if method.way == "static"
  Made: HGLOBAL;
  Status: LongInt;
begin
  Enter;
@{ broken("  Made := " ~ call(method) ~ ";") }@
  Leave;
  Result := Fresh(Made, Status, '@{ name }@');
%% else
  Call: TKirvoCall;
%% if method.other
  Same: TKirvoImage;
%% endif
begin
%% for one in method.parameters if one.parameter.count
  if Length(@{ name_of(one) }@) <> @{ one.parameter.count }@ then
    Refuse(KIRVO_BAD_PARAMETER, '@{ name }@: @{ one.parameter.count }@ values are needed');
%% endfor
%% if method.way == "change"
  Ready(@{ depths(method) }@);
%% endif
%% set indent = "  "
%% if method.other
%% set indent = "    "
  Same := Other.Convert(DepthFor(@{ depths(method) }@));
  try
%% endif
%% set copied = method.way == "method" and not method.makes
@{ indent }@Start(Call, @{ depths(method) }@, @{ copied }@, @{ "AreaLeft, AreaTop, AreaWidth, AreaHeight" if method.has_area else "0, 0, -1, -1" }@);
%% if method.makes
@{ broken(indent ~ "Result := FinishMade(Call, " ~ call(method) ~ ", '" ~ name ~ "');") }@
%% else
@{ broken(indent ~ "Call.Status := " ~ call(method) ~ ";") }@
@{ indent }@@{ "Result := FinishCopy" if copied else "Finish" }@(Call, '@{ name }@');
%% endif
%% if method.other
  finally
    Same.Free;
  end;
%% endif
%% endif
end;

%% endfor
function TKirvoImage.Filter3x3(const Weights: array of LongInt; Divisor, AreaLeft, AreaTop, AreaWidth,
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
  Index: Integer;
begin
  if Length(Weights) <> 9 then
    Refuse(KIRVO_BAD_PARAMETER, 'Filter3x3: nine weights are needed');
  if Divisor = 0 then
    for Index := 0 to 8 do
      Divisor := Divisor + Weights[Index];
  Start(Call, [16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  SetFilter3x3(Weights[6], Weights[7], Weights[8], Weights[3], Weights[4], Weights[5], Weights[0],
    Weights[1], Weights[2], Divisor);
  Result := FinishMade(Call, DibFilter3x3(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Call.Status), 'Filter3x3');
end;

function Pair(Low, High: LongInt): LongWord;
begin
  Result := LongWord(Low and $FFFF) or LongWord(High and $FFFF) shl 16;
end;

function TKirvoImage.KeepColours(Flags: Word; const First, Second, Third: TKirvoRange; AreaLeft,
  AreaTop, AreaWidth, AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24FilterEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Pair(Flags, First.Lower), Pair(First.Upper, First.Test), Pair(Second.Lower, Second.Upper),
    Pair(Second.Test, Third.Lower), Pair(Third.Upper, Third.Test), Call.Status), 'KeepColours');
end;

function TKirvoImage.Separate: TKirvoImages;
var
  Call: TKirvoCall;
  Made: array [0..2] of HGLOBAL;
  Index: Integer;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Call.Status := Dib24Separate(Call.Dib, 0, 0, Call.Width, Call.Height, @Made[0], @Made[1], @Made[2]);
  Finish(Call, 'Separate');
  for Index := 0 to 2 do
    Result[Index] := TKirvoImage.Adopt(Made[Index], FSource);
end;

function TKirvoImage.Histogram: TKirvoHistogram;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := DibHistgram(Call.Dib, 0, 0, Call.Width, Call.Height, @Result.Red, @Result.Green,
    @Result.Blue);
  Finish(Call, 'Histogram');
end;

function TKirvoImage.CountColours: LongWord;
var
  Call: TKirvoCall;
begin
  Start(Call, [1, 4, 8, 16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := DibCountColors(Call.Dib, Result);
  Finish(Call, 'CountColours');
end;

function TKirvoImage.GetPixel(X, Y: Integer): LongWord;
begin
  Check(DibGetPixelColor(FDib, X, Y, Result), 'GetPixel');
end;

class procedure TKirvoImage.KeyColour(Colour: LongWord);
begin
  Enter;
  SetKeyColorDib24Add(Colour);
  Leave;
end;

class procedure TKirvoImage.MixMasks(const Three, Five: array of LongInt);
begin
  if (Length(Three) <> 9) or (Length(Five) <> 25) then
    Refuse(KIRVO_BAD_PARAMETER, 'MixMasks: 9 and 25 weights are needed');
  Enter;
  Dib24Mix3X3SetMask(@Three[0]);
  Dib24Mix5X5SetMask(@Five[0]);
  Leave;
end;

initialization
  TheLibrary := TCriticalSection.Create;

finalization
  TheLibrary.Free;

end.
