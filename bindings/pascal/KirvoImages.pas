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

    { Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
      Left: rectangle in the source. Top: rectangle in the source. Width: rectangle in the source.
      Height: rectangle in the source. }
    function Crop(Left: LongInt; Top: LongInt; Width: LongInt; Height: LongInt): TKirvoImage;
    { Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with
      32-bit coordinates, or by averaging. NewWidth: size of the result, at least 1. NewHeight:
      size of the result, at least 1. Smooth: 1 switches smoothing on, any other value off. }
    function Resize(NewWidth: LongInt; NewHeight: LongInt; Smooth: Boolean = True;
      AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Turns a rectangle upside down, in place. }
    function Flip(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Exchanges left and right in a rectangle, in place. }
    function Mirror(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Turns a rectangle by 180 degrees, in place. }
    function Rotate180(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
      colour table or masks. Direction: 0 clockwise: the top left corner goes to the top right; 1
      counter-clockwise: it goes to the bottom left. }
    function Rotate90(Direction: LongInt = 0; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Brightens or darkens. Level: -100 to 100. }
    function Brightness(Level: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Raises or lowers the contrast around mid-grey. Level: -100 (all grey) to 100 (2 * channel -
      128). }
    function Contrast(Level: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Corrects the gamma. Gamma: 0 or more. }
    function Gamma(Gamma: Double; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Corrects the gamma of each channel, as Dib24Gamma does. Red: gammas, 0 or more. Green:
      gammas, 0 or more. Blue: gammas, 0 or more. }
    function GammaChannels(Red: Double = 1; Green: Double = 1; Blue: Double = 1;
      AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Multiplies all channels by a fraction. Numerator: 1 to 255. Denominator: 0 or more. }
    function Tone(Numerator: LongInt; Denominator: LongInt; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Multiplies each channel by its factor. Red: factors, 0 or more. Green: factors, 0 or more.
      Blue: factors, 0 or more. }
    function ToneChannels(Red: Double = 1; Green: Double = 1; Blue: Double = 1;
      AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Inverts a rectangle in place. }
    function Negative(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Turns a rectangle to grey. }
    function Monochrome(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Halves the intensity. }
    function HalfTone(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Exchanges the channels of a rectangle in place. Mode: what red, green and blue are taken
      from: 0 nothing changes (KIRVO_OK even for a null handle), 1 red, blue, green; 2 green,
      blue, red; 3 green, red, blue; 4 blue, red, green; 5 blue, green, red. }
    function SwapChannels(Mode: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Maps every channel through a table. Table: 256 bytes. }
    function MapChannels(const Table: array of Byte; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Makes a copy of a rectangle with its hue changed. Mode: as for DibModifyHue. Value: degrees,
      0 to 359 for every mode. }
    function ChangeHue(Mode: LongInt; Value: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { XORs a colour over a rectangle, in place. Colour: 0x00BBGGRR. }
    function ExclusiveOr(Colour: LongWord; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Blurs a rectangle with a fixed 3 x 3 kernel. }
    function Blur(AreaLeft: LongInt = 0; AreaTop: LongInt = 0; AreaWidth: LongInt = -1;
      AreaHeight: LongInt = -1): TKirvoImage;
    { Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength. Strength: 0
      (divides by 8) to 3 (by 2); any other value acts as 0. }
    function Sharpen(Strength: LongInt = 0; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Sharpens a rectangle, or shows its edges in grey. Mode: 0 to 5. }
    function Relief(Mode: LongInt = 1; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the
      rows included. Threshold: any value. Mode: 0, 1 or 2. }
    function ColourEdges(Threshold: LongInt = 20; Mode: LongInt = 0; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels. Radius: 1
      to 64. Luminance: 0 for channels on their own, else by luminance. }
    function Dilate(Radius: LongInt = 1; Luminance: Boolean = False; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels. Radius: 1
      to 64. Luminance: 0 for channels on their own, else by luminance. }
    function Erode(Radius: LongInt = 1; Luminance: Boolean = False; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Keeps channel values by range. Red: ranges. Green: ranges. Blue: ranges. }
    function KeepChannels(Red: LongWord; Green: LongWord; Blue: LongWord; AreaLeft: LongInt = 0;
      AreaTop: LongInt = 0; AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Mosaic by samples. Block: size of the blocks in pixels, at least 1; may exceed the
      rectangle. }
    function Mosaic(Block: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Mosaic by averages. Block: size of the blocks in pixels, 1 to 1024. }
    function MosaicAverage(Block: LongInt; AreaLeft: LongInt = 0; AreaTop: LongInt = 0;
      AreaWidth: LongInt = -1; AreaHeight: LongInt = -1): TKirvoImage;
    { Makes a copy of a 24-bit image that keeps only the top bits of each channel. RedBits: bits
      of red kept, 0 to 8. GreenBits: bits of green kept, 0 to 8. BlueBits: bits of blue kept, 0
      to 8. }
    function KeepBits(RedBits: LongInt; GreenBits: LongInt; BlueBits: LongInt): TKirvoImage;
    { Makes an 8-bit image with error diffusion to 256 fixed colours. }
    function Reduce256: TKirvoImage;
    { Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed
      colours. }
    function Reduce16: TKirvoImage;
    { Makes an 8-bit grey image, without diffusion. }
    function ReduceGrey: TKirvoImage;
    { Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
      pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255. }
    function Dither256: TKirvoImage;
    { Makes an 8-bit image with exactly the colours of the source. Mode: 0 or 1. }
    function Exact256(Mode: LongInt = 1): TKirvoImage;
    { Makes a 4-bit image with exactly the colours of the source. Mode: 0 or 1. }
    function Exact16(Mode: LongInt = 1): TKirvoImage;
    { Interleaves the rows of two images. Other: packed DIB of the same depth. }
    function Interleave(Other: TKirvoImage): TKirvoImage;
    { Copies a rectangle between two images of any sizes and one depth. Other: packed DIB of 8,
      16, 24 or 32 bits. ToLeft: corner of the rectangle in the destination. ToTop: corner of the
      rectangle in the destination. }
    procedure Paste(Other: TKirvoImage; ToLeft: LongInt = 0; ToTop: LongInt = 0);
    { Composes a rectangle of one image onto one of the same size of another. Other: packed DIB of
      24 or 32 bits. Mode: 0 to 4. ToLeft: corner of the rectangle in the destination. ToTop:
      corner of the rectangle in the destination. }
    procedure Compose(Other: TKirvoImage; Mode: LongInt = 0; ToLeft: LongInt = 0;
      ToTop: LongInt = 0);
    { Writes one pixel of a direct-colour image. X: column from the left. Y: row from the top.
      Colour: 0x00BBGGRR. }
    procedure SetPixel(X: LongInt; Y: LongInt; Colour: LongWord);
    { Fills the pixels x0 to x1 (inclusive) of one row with a colour. X0: first column. X1: last
      column. Y: row from the top. Colour: 0x00BBGGRR. }
    procedure SetLine(X0: LongInt; X1: LongInt; Y: LongInt; Colour: LongWord);
    { Draws the 3 x 3 neighbours of one pixel towards its colour, in place. X: the centre. Y: the
      centre. }
    procedure Mix3x3(X: LongInt; Y: LongInt);
    { Draws the 5 x 5 neighbours of one pixel towards its colour, in place. X: the centre. Y: the
      centre. }
    procedure Mix5x5(X: LongInt; Y: LongInt);
    { Makes an image of one colour. Width: size in pixels, at least 1. Height: size in pixels, at
      least 1. Colour: 0x00BBGGRR. }
    class function Solid(Width: LongInt; Height: LongInt; Colour: LongWord): TKirvoImage;
    { Makes a horizontal gradient. Width: size in pixels, at least 1. Height: size in pixels, at
      least 1. Start: colour of the left column, 0x00BBGGRR. End_: colour of the right column. }
    class function GradientAcross(Width: LongInt; Height: LongInt; Start: LongWord;
      End_: LongWord): TKirvoImage;
    { Makes a vertical gradient, from start at the top to end at the bottom. Width: size in
      pixels, at least 1. Height: size in pixels, at least 1. Start: colour of the top row,
      0x00BBGGRR. End_: colour of the bottom row. }
    class function GradientDown(Width: LongInt; Height: LongInt; Start: LongWord;
      End_: LongWord): TKirvoImage;
    { Makes a bilinear gradient between four corners. Width: size in pixels, at least 1. Height:
      size in pixels, at least 1. TopLeft: colours 0x00BBGGRR. TopRight: colours 0x00BBGGRR.
      BottomLeft: colours 0x00BBGGRR. BottomRight: colours 0x00BBGGRR. }
    class function GradientCorners(Width: LongInt; Height: LongInt; TopLeft: LongWord;
      TopRight: LongWord; BottomLeft: LongWord; BottomRight: LongWord): TKirvoImage;
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

function TKirvoImage.Crop(Left: LongInt; Top: LongInt; Width: LongInt;
  Height: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, Dib24DupEx(Call.Dib, Left, Top, Width, Height, Call.Status), 'Crop');
end;

function TKirvoImage.Resize(NewWidth: LongInt; NewHeight: LongInt; Smooth: Boolean;
  AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24ZoomEx2(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    NewWidth, NewHeight, Call.Status, Ord(Smooth)), 'Resize');
end;

function TKirvoImage.Flip(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24Flip(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height);
  Result := FinishCopy(Call, 'Flip');
end;

function TKirvoImage.Mirror(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24Mirror(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height);
  Result := FinishCopy(Call, 'Mirror');
end;

function TKirvoImage.Rotate180(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24FlipMirror(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height);
  Result := FinishCopy(Call, 'Rotate180');
end;

function TKirvoImage.Rotate90(Direction: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Rotate(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Direction, Call.Status), 'Rotate90');
end;

function TKirvoImage.Brightness(Level: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Brightness(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Level, Call.Status), 'Brightness');
end;

function TKirvoImage.Contrast(Level: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Contrast(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Level,
    Call.Status), 'Contrast');
end;

function TKirvoImage.Gamma(Gamma: Double; AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Gamma(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Gamma,
    Call.Status), 'Gamma');
end;

function TKirvoImage.GammaChannels(Red: Double; Green: Double; Blue: Double; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibGammaEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Red,
    Green, Blue, Call.Status), 'GammaChannels');
end;

function TKirvoImage.Tone(Numerator: LongInt; Denominator: LongInt; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24ToneCtrl(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Numerator, Denominator, Call.Status), 'Tone');
end;

function TKirvoImage.ToneChannels(Red: Double; Green: Double; Blue: Double; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24ToneCtrlEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Red,
    Green, Blue, Call.Status), 'ToneChannels');
end;

function TKirvoImage.Negative(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24Negative(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height);
  Result := FinishCopy(Call, 'Negative');
end;

function TKirvoImage.Monochrome(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Monochrome(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Call.Status), 'Monochrome');
end;

function TKirvoImage.HalfTone(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24HalfTone(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Call.Status), 'HalfTone');
end;

function TKirvoImage.SwapChannels(Mode: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24RGBChange(Call.Dib, Mode, Call.X, Call.Y, Call.Width, Call.Height);
  Result := FinishCopy(Call, 'SwapChannels');
end;

function TKirvoImage.MapChannels(const Table: array of Byte; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  if Length(Table) <> 256 then
    Refuse(KIRVO_BAD_PARAMETER, 'MapChannels: 256 values are needed');
  Start(Call, [8, 16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibColorMapEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    @Table[0], Call.Status), 'MapChannels');
end;

function TKirvoImage.ChangeHue(Mode: LongInt; Value: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibModifyHueEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Mode,
    Value, Call.Status), 'ChangeHue');
end;

function TKirvoImage.ExclusiveOr(Colour: LongWord; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], True, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Call.Status := Dib24XOR(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Colour);
  Result := FinishCopy(Call, 'ExclusiveOr');
end;

function TKirvoImage.Blur(AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Gausian(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Call.Status), 'Blur');
end;

function TKirvoImage.Sharpen(Strength: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24SharpenEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Strength, Call.Status), 'Sharpen');
end;

function TKirvoImage.Relief(Mode: LongInt; AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Sharpen(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Mode,
    Call.Status), 'Relief');
end;

function TKirvoImage.ColourEdges(Threshold: LongInt; Mode: LongInt; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24ColorEdge(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height,
    Threshold, Mode, Call.Status), 'ColourEdges');
end;

function TKirvoImage.Dilate(Radius: LongInt; Luminance: Boolean; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibBlockMxM(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Radius,
    1, Ord(Luminance), Call.Status), 'Dilate');
end;

function TKirvoImage.Erode(Radius: LongInt; Luminance: Boolean; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibBlockMxM(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Radius,
    0, Ord(Luminance), Call.Status), 'Erode');
end;

function TKirvoImage.KeepChannels(Red: LongWord; Green: LongWord; Blue: LongWord; AreaLeft: LongInt;
  AreaTop: LongInt; AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, Dib24Filter(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Red,
    Green, Blue, Call.Status), 'KeepChannels');
end;

function TKirvoImage.Mosaic(Block: LongInt; AreaLeft: LongInt; AreaTop: LongInt; AreaWidth: LongInt;
  AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibMosaicEx(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Block,
    Call.Status), 'Mosaic');
end;

function TKirvoImage.MosaicAverage(Block: LongInt; AreaLeft: LongInt; AreaTop: LongInt;
  AreaWidth: LongInt; AreaHeight: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [8, 16, 24, 32], False, AreaLeft, AreaTop, AreaWidth, AreaHeight);
  Result := FinishMade(Call, DibMosaicEx2(Call.Dib, Call.X, Call.Y, Call.Width, Call.Height, Block,
    Call.Status), 'MosaicAverage');
end;

function TKirvoImage.KeepBits(RedBits: LongInt; GreenBits: LongInt; BlueBits: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24], False, 0, 0, -1, -1);
  Result := FinishMade(Call, DibCutDepth(Call.Dib, RedBits, GreenBits, BlueBits, Call.Status),
    'KeepBits');
end;

function TKirvoImage.Reduce256: TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, DecreaseColor256(Call.Dib, Call.Status), 'Reduce256');
end;

function TKirvoImage.Reduce16: TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, DecreaseColor16(Call.Dib, Call.Status), 'Reduce16');
end;

function TKirvoImage.ReduceGrey: TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, DecreaseColorMono256(Call.Dib, Call.Status), 'ReduceGrey');
end;

function TKirvoImage.Dither256: TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, Decrease256Fast(Call.Dib, Call.Status), 'Dither256');
end;

function TKirvoImage.Exact256(Mode: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, Decrease256PaletteEx(Call.Dib, Mode, Call.Status), 'Exact256');
end;

function TKirvoImage.Exact16(Mode: LongInt): TKirvoImage;
var
  Call: TKirvoCall;
begin
  Start(Call, [24, 32], False, 0, 0, -1, -1);
  Result := FinishMade(Call, Decrease16PaletteEx(Call.Dib, Mode, Call.Status), 'Exact16');
end;

function TKirvoImage.Interleave(Other: TKirvoImage): TKirvoImage;
var
  Call: TKirvoCall;
  Same: TKirvoImage;
begin
  Same := Other.Convert(DepthFor([24, 32]));
  try
    Start(Call, [24, 32], False, 0, 0, -1, -1);
    Result := FinishMade(Call, Dib24InterLeave(Call.Dib, 0, 0, Same.FDib, 0, 0, Width, Height,
      Call.Status), 'Interleave');
  finally
    Same.Free;
  end;
end;

procedure TKirvoImage.Paste(Other: TKirvoImage; ToLeft: LongInt; ToTop: LongInt);
var
  Call: TKirvoCall;
  Same: TKirvoImage;
begin
  Ready([16, 24, 32]);
  Same := Other.Convert(DepthFor([16, 24, 32]));
  try
    Start(Call, [16, 24, 32], False, 0, 0, -1, -1);
    Call.Status := Dib24CopyEx(Call.Dib, ToLeft, ToTop, Same.FDib, 0, 0, Same.Width, Same.Height);
    Finish(Call, 'Paste');
  finally
    Same.Free;
  end;
end;

procedure TKirvoImage.Compose(Other: TKirvoImage; Mode: LongInt; ToLeft: LongInt; ToTop: LongInt);
var
  Call: TKirvoCall;
  Same: TKirvoImage;
begin
  Ready([24, 32]);
  Same := Other.Convert(DepthFor([24, 32]));
  try
    Start(Call, [24, 32], False, 0, 0, -1, -1);
    Call.Status := Dib24Add(Call.Dib, ToLeft, ToTop, Same.FDib, 0, 0, Same.Width, Same.Height,
      Mode);
    Finish(Call, 'Compose');
  finally
    Same.Free;
  end;
end;

procedure TKirvoImage.SetPixel(X: LongInt; Y: LongInt; Colour: LongWord);
var
  Call: TKirvoCall;
begin
  Ready([16, 24, 32]);
  Start(Call, [16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := DibSetPixelColor(Call.Dib, X, Y, Colour);
  Finish(Call, 'SetPixel');
end;

procedure TKirvoImage.SetLine(X0: LongInt; X1: LongInt; Y: LongInt; Colour: LongWord);
var
  Call: TKirvoCall;
begin
  Ready([16, 24, 32]);
  Start(Call, [16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := DibSetLineColor(Call.Dib, X0, X1, Y, Colour);
  Finish(Call, 'SetLine');
end;

procedure TKirvoImage.Mix3x3(X: LongInt; Y: LongInt);
var
  Call: TKirvoCall;
begin
  Ready([16, 24, 32]);
  Start(Call, [16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := Dib24Mix3X3(Call.Dib, X, Y);
  Finish(Call, 'Mix3x3');
end;

procedure TKirvoImage.Mix5x5(X: LongInt; Y: LongInt);
var
  Call: TKirvoCall;
begin
  Ready([16, 24, 32]);
  Start(Call, [16, 24, 32], False, 0, 0, -1, -1);
  Call.Status := Dib24Mix5X5(Call.Dib, X, Y);
  Finish(Call, 'Mix5x5');
end;

class function TKirvoImage.Solid(Width: LongInt; Height: LongInt; Colour: LongWord): TKirvoImage;
var
  Made: HGLOBAL;
  Status: LongInt;
begin
  Enter;
  Made := Dib24Solid(Width, Height, 24, Colour, Status);
  Leave;
  Result := Fresh(Made, Status, 'Solid');
end;

class function TKirvoImage.GradientAcross(Width: LongInt; Height: LongInt; Start: LongWord;
  End_: LongWord): TKirvoImage;
var
  Made: HGLOBAL;
  Status: LongInt;
begin
  Enter;
  Made := Dib24Gradation1(Width, Height, 24, Start, End_, Status);
  Leave;
  Result := Fresh(Made, Status, 'GradientAcross');
end;

class function TKirvoImage.GradientDown(Width: LongInt; Height: LongInt; Start: LongWord;
  End_: LongWord): TKirvoImage;
var
  Made: HGLOBAL;
  Status: LongInt;
begin
  Enter;
  Made := Dib24Gradation2(Width, Height, 24, Start, End_, Status);
  Leave;
  Result := Fresh(Made, Status, 'GradientDown');
end;

class function TKirvoImage.GradientCorners(Width: LongInt; Height: LongInt; TopLeft: LongWord;
  TopRight: LongWord; BottomLeft: LongWord; BottomRight: LongWord): TKirvoImage;
var
  Made: HGLOBAL;
  Status: LongInt;
begin
  Enter;
  Made := Dib24Gradation3(Width, Height, 24, TopLeft, TopRight, BottomLeft, BottomRight, Status);
  Leave;
  Result := Fresh(Made, Status, 'GradientCorners');
end;

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
