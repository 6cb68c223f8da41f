{ Kirvo: image processing on packed DIBs, for Delphi (7 and later) and Free Pascal.

  The program needs Kirvo.dll on Windows and libkirvo.so elsewhere. Handles and records are those of
  the unit Windows; away from Windows this unit declares them. What every function does, its ranges
  and status codes are written in kirvo.h, under the same names.

  Written by script/bindings from interface/kirvo.txt: changes belong there. }
unit Kirvo;

{$IFDEF FPC}
  {$MODE DELPHI}
  {$PACKRECORDS C}
{$ELSE}
  {$A8}
{$ENDIF}

interface

uses
  {$IFDEF MSWINDOWS} Windows, Messages, {$ENDIF} SysUtils;

const
  KirvoLibrary = {$IFDEF MSWINDOWS} 'Kirvo.dll' {$ELSE} 'libkirvo.so' {$ENDIF};

  // Status codes
  // Success.
  KIRVO_OK = 0;
  // A rectangle that is empty, negative or outside the image, a value out of its range, or a block
  // of memory smaller than its header says.
  KIRVO_BAD_PARAMETER = -1;
  // Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes,
  // or a JPEG stream has outgrown its block.
  KIRVO_NO_MEMORY = -2;
  // Null handle, null data, or a handle that is freed or invented.
  KIRVO_NULL_HANDLE = -3;
  // A file could not be opened or created.
  KIRVO_CANNOT_OPEN = -4;
  // A read error, or a file that is too short.
  KIRVO_READ_ERROR = -5;
  // A write error: the disk is full or was taken away.
  KIRVO_WRITE_ERROR = -6;
  // JPEG: no start of image.
  KIRVO_JPEG_NO_SOI = -10;
  // JPEG: a marker that does not belong into the entropy-coded data.
  KIRVO_JPEG_MARKER = -11;
  // JPEG: end of image before the first scan.
  KIRVO_JPEG_EARLY_EOI = -12;
  // JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer.
  KIRVO_JPEG_HEADER = -13;
  // JPEG: a Huffman code that does not exist, or a table that was not defined.
  KIRVO_JPEG_HUFFMAN = -14;
  // JPEG encoder: a coefficient that has no code.
  KIRVO_JPEG_CATEGORY = -15;
  // The caller has abandoned a piecewise encode or decode.
  KIRVO_ABANDONED = -16;
  // Another encode or decode is in progress.
  KIRVO_BUSY = -17;
  // JPEG: a frame type other than baseline and progressive Huffman coding.
  KIRVO_JPEG_FRAME = -19;
  // Not a BMP file, or a depth that BMP files do not have.
  KIRVO_NOT_BMP = -20;
  // The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them.
  KIRVO_NEEDS_8 = -21;
  // The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them.
  KIRVO_NEEDS_24 = -22;
  // Not an uncompressed 24-bit Targa file.
  KIRVO_NOT_TARGA = -25;
  // The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for
  // it.
  KIRVO_Q0_SIZE = -26;
  // Not a RAW file, or one too short for its size.
  KIRVO_NOT_RAW = -27;
  // A RAW file with a palette, which the reader does not offer.
  KIRVO_RAW_PALETTE = -28;
  // More than 256 different colours (239 and the system colours in mode 0).
  KIRVO_MORE_THAN_256 = -30;
  // More than 16 different colours, or in mode 0 others than the system colours.
  KIRVO_MORE_THAN_16 = -31;
  // Not an icon or cursor file.
  KIRVO_NOT_ICON = -35;
  // The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.
  KIRVO_NEEDS_8_16_24_32 = -40;
  // The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.
  KIRVO_NEEDS_16_24_32 = -41;
  // The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24.
  KIRVO_NEEDS_24_32 = -42;
  // The image must have 8, 24 or 32 bits.
  KIRVO_NEEDS_8_24_32 = -43;
  // The image must have 16 or 32 bits.
  KIRVO_NEEDS_16_32 = -44;
  // The image must have 1, 4 or 8 bits.
  KIRVO_NEEDS_1_4_8 = -45;
  // The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24.
  KIRVO_NEEDS_8_24 = -46;
  // The image must have 16 or 24 bits.
  KIRVO_NEEDS_16_24 = -47;
  // version of this header: 1.0.4.2, as GetVerKirvoDll tells it
  KIRVO_VERSION = $1000402;
{$IFNDEF MSWINDOWS}

  // Names of Windows
  // GlobalAlloc: the block is known by a handle
  GMEM_MOVEABLE = 2;
  // GlobalAlloc: the block is zero
  GMEM_ZEROINIT = $0040;
  // GlobalAlloc: both
  GHND = $0042;
  // biCompression: plain pixels
  BI_RGB = 0;
  // biCompression: plain pixels under three masks
  BI_BITFIELDS = 3;
  // the message that carries progress
  WM_COMMAND = $0111;
  // GetSystemMetrics: height of a menu bar
  SM_CYMENU = 15;
  // GetSystemMetrics: width of a window's frame
  SM_CXFRAME = 32;
  // SetWindowPos: the position stays
  SWP_NOMOVE = 2;
  // SetWindowPos: the order of windows stays
  SWP_NOZORDER = 4;
{$ENDIF}

type
  { As wide as a pointer. }
  {$IFDEF FPC}
  KirvoUIntPtr = PtrUInt;
  KirvoIntPtr = PtrInt;
  {$ELSE}
  KirvoUIntPtr = {$IFDEF CPUX64} NativeUInt {$ELSE} LongWord {$ENDIF};
  KirvoIntPtr = {$IFDEF CPUX64} NativeInt {$ELSE} LongInt {$ENDIF};
  {$ENDIF}
{$IFNDEF MSWINDOWS}

  { Handles: 0 is none. }
  HGLOBAL = KirvoUIntPtr;
  HWND = KirvoUIntPtr;
  HPALETTE = KirvoUIntPtr;
  THandle = KirvoUIntPtr;

  { Header of a device-independent bitmap, as in Win32. }
  TBITMAPINFOHEADER = record
    biSize: LongWord; // size of this header in bytes: 40
    biWidth: LongInt; // width in pixels
    biHeight: LongInt; // height in pixels; positive: rows are stored bottom-up
    biPlanes: Word; // 1
    biBitCount: Word; // 1, 4, 8, 16, 24 or 32
    biCompression: LongWord; // BI_RGB or BI_BITFIELDS
    biSizeImage: LongWord; // bytes of all rows
    biXPelsPerMeter: LongInt; // not interpreted
    biYPelsPerMeter: LongInt; // not interpreted
    biClrUsed: LongWord; // number of colour-table entries, or 0 for the depth's full number
    biClrImportant: LongWord; // not interpreted
  end;
  PBITMAPINFOHEADER = ^TBITMAPINFOHEADER;

  { One entry of a colour table. }
  TRGBQUAD = record
    rgbBlue: Byte; // blue
    rgbGreen: Byte; // green
    rgbRed: Byte; // red
    rgbReserved: Byte; // not interpreted
  end;
  PRGBQUAD = ^TRGBQUAD;

  { One entry of a logical palette. }
  TPALETTEENTRY = record
    peRed: Byte; // red
    peGreen: Byte; // green
    peBlue: Byte; // blue
    peFlags: Byte; // 0 or a PC_ flag
  end;
  PPALETTEENTRY = ^TPALETTEENTRY;

  { A rectangle by its edges. }
  TRECT = record
    left: LongInt; // left edge
    top: LongInt; // top edge
    right: LongInt; // one past the right edge
    bottom: LongInt; // one past the bottom edge
  end;
  PRECT = ^TRECT;

  { How a program without Win32 windows takes part. }
  TKirvoWindowHost = record
    // progress messages: window, WM_COMMAND, command id, percent
    SendMessageA:
      function(window: HWND; message: LongWord; wparam: KirvoUIntPtr;
            lparam: KirvoIntPtr): KirvoIntPtr; cdecl;
    // outer rectangle of a window
    GetWindowRect:
      function(window: HWND; out rectangle: TRECT): LongBool; cdecl;
    // client rectangle of a window
    GetClientRect:
      function(window: HWND; out rectangle: TRECT): LongBool; cdecl;
    // resizes a window
    SetWindowPos:
      function(window, after: HWND; x, y, width, height: LongInt; flags: LongWord): LongBool; cdecl;
    // sizes of frames and menus
    GetSystemMetrics:
      function(index: LongInt): LongInt; cdecl;
  end;
  PKirvoWindowHost = ^TKirvoWindowHost;
{$ENDIF}

  PKirvoLongWord = ^LongWord;
  PKirvoHandle = ^HGLOBAL;

  { What the header of a JPEG stream says. }
  TJpgDecSpec = record
    width: LongWord; // pixels
    height: LongWord; // pixels
    components: LongWord; // 1 (grey) or 3
    lumaBlocks: LongWord; // luma blocks in an MCU: 1, 2 or 4
    restartInterval: LongWord; // MCUs between restart markers, 0 without them
    commentCount: LongWord; // comments before the image data that are not empty, at most 5
    fileSize: LongWord; // bytes
  end;
  PJpgDecSpec = ^TJpgDecSpec;

{$IFNDEF MSWINDOWS}

// Names of Windows

{ Allocates a movable block. }
function GlobalAlloc(flags: LongWord; bytes: KirvoUIntPtr): HGLOBAL;
  cdecl; external KirvoLibrary name 'GlobalAlloc';

{ Locks a block. }
function GlobalLock(block: HGLOBAL): Pointer;
  cdecl; external KirvoLibrary name 'GlobalLock';

{ Undoes one GlobalLock. }
function GlobalUnlock(block: HGLOBAL): LongBool;
  cdecl; external KirvoLibrary name 'GlobalUnlock';

{ Frees a block, locked or not. }
function GlobalFree(block: HGLOBAL): HGLOBAL;
  cdecl; external KirvoLibrary name 'GlobalFree';

{ Size of a block. }
function GlobalSize(block: HGLOBAL): KirvoUIntPtr;
  cdecl; external KirvoLibrary name 'GlobalSize';

{ Reads entries of a logical palette. }
function GetPaletteEntries(palette: HPALETTE; first, count: LongWord;
  entries: PPALETTEENTRY): LongWord;
  cdecl; external KirvoLibrary name 'GetPaletteEntries';

{ Deletes a logical palette. }
function DeleteObject(object_: THandle): LongBool;
  cdecl; external KirvoLibrary name 'DeleteObject';

{ Sets the window host. }
procedure KirvoSetWindowHost(host: PKirvoWindowHost);
  cdecl; external KirvoLibrary name 'KirvoSetWindowHost';
{$ENDIF}

// Images

{ Version of the library. }
function GetVerKirvoDll: LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'GetVerKirvoDll';

{ Registers for progress messages of the next long operation. }
function KirvoSetProcess(window: HWND; command: LongWord; enable: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'KirvoSetProcess';

{ Number of colour-table entries of an image. }
function DibNumColors(header: Pointer): Word;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibNumColors';

{ Size of the colour part of an image. }
function PaletteSize(header: Pointer): Word;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'PaletteSize';

{ Depth of an image. }
function DibQueryBitCount(dib: HGLOBAL): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibQueryBitCount';

{ Sets one colour-table entry. }
function XPaletteQuad(dib: HGLOBAL; index: LongInt; colour: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'XPaletteQuad';

{ Makes a logical palette of the library's fixed 256 colours. }
function KirvoCreatePalette: HPALETTE;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'KirvoCreatePalette';

{ Allocates a new packed DIB. }
function DibMemAllocEx(width: LongWord; height: LongInt; bits: LongWord): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibMemAllocEx';

// BMP files

{ Reads a BMP file of any depth. }
function DibReadEx(name: PAnsiChar; out width, height, bits: LongWord;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibReadEx';

{ Reads a 24-bit BMP file. }
function Dib24Read(name: PAnsiChar; out width, height: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Read';

{ Writes an image, or a rectangle of it, as a BMP file. }
function DibWriteEx(name: PAnsiChar; dib: HGLOBAL; x, y, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibWriteEx';

{ Writes a 24-bit image, or a rectangle of it, as a BMP file. }
function Dib24Write(name: PAnsiChar; dib: HGLOBAL; x, y, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Write';

// JPEG decoder

{ Begins a decode with the first bytes of a stream. }
function JpgDecFirst(data: HGLOBAL; size: LongInt; out image: HGLOBAL): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecFirst';

{ Goes on with a decode that JpgDecFirst has begun. }
function JpgDecNext(data: HGLOBAL; size, final_: LongInt; out image: HGLOBAL): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecNext';

{ Decodes a file. }
function JpgDecMainEx(name: PAnsiChar; out width, height: LongWord; out error: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecMainEx';

{ Decodes a stream that is in memory. }
function JpgDecMainHGLOBAL(data: HGLOBAL; size: LongInt; out width, height: LongWord;
  out error: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecMainHGLOBAL';

{ Does nothing. }
procedure JpgDecSetNoblock(a, b, c: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecSetNoblock';

{ Reads the header of a file up to its image data. }
function JpgDecGetSpecEx(name: PAnsiChar; out spec: TJpgDecSpec): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetSpecEx';

{ The first four values of JpgDecGetSpecEx. }
function JpgDecGetSpec(name: PAnsiChar;
  out width, height, components, lumaBlocks: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetSpec';

{ Switches the storing and the retrieval of comments on or off. }
procedure JpgDecGetCommentEnable(enable: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetCommentEnable';

{ Counts the comments of the last stream. }
function JpgDecCommentCounts: LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecCommentCounts';

{ A stored comment. }
function JpgDecGetComment(index: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetComment';

{ Frees the stored comments. }
procedure JpgDecCommentFree;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecCommentFree';

{ Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64 values
  each, row by row. }
function JpgDecGetQtable(luma, chroma: PWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetQtable';

{ One quantisation table of the last decode. }
function JpgDecGetQtableEx(number: LongInt; table: PWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetQtableEx';

{ The marker that ended the last decode with KIRVO_JPEG_MARKER. }
function JpgDecGetLastUexMarker(out position: LongWord): Word;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgDecGetLastUexMarker';

// JPEG encoder

{ Sizes of the most recent encode. }
function JpgCodGetStatus(out source_bytes, output_bytes: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodGetStatus';

{ Starts to encode a rectangle in colour and writes the headers. }
function JpgCodFirst(dib: HGLOBAL; left, top, width, height, mcus_per_call: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodFirst';

{ Goes on with the encode that JpgCodFirst has started. }
function JpgCodNext(control: LongInt; out stream_bytes: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodNext';

{ Encodes a rectangle in colour into a file. }
function JpgCodMainEx(path: PAnsiChar; dib: HGLOBAL;
  left, top, width, height, unused1, unused2: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodMainEx';

{ Encodes a rectangle in colour into a memory block. }
function JpgCodMainHGLOBAL(dib: HGLOBAL; left, top, width, height: LongInt;
  out stream_bytes: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodMainHGLOBAL';

{ Starts to encode a rectangle as a grey stream. }
function JpgCodFirst_M(dib: HGLOBAL; left, top, width, height, grey_mode, mcus_per_call: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodFirst_M';

{ Goes on with the encode that JpgCodFirst_M has started. }
function JpgCodNext_M(control: LongInt; out stream_bytes: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodNext_M';

{ Encodes a rectangle as a grey stream into a file. }
function JpgCodMainEx_M(path: PAnsiChar; dib: HGLOBAL;
  left, top, width, height, grey_mode: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodMainEx_M';

{ Encodes a rectangle as a grey stream into a memory block. }
function JpgCodMainHGLOBAL_M(dib: HGLOBAL; left, top, width, height, grey_mode: LongInt;
  out stream_bytes: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodMainHGLOBAL_M';

// JPEG encoder settings

{ Sets how colour streams sample chroma. }
function JpgCodSetSubsample(mode: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetSubsample';

{ Selects one of the quality levels 2 to 5. }
function JpgCodSetQ(q: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetQ';

{ Selects a quality level. }
function JpgCodSetQEx(level: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetQEx';

{ Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx). }
function JpgCodSetQtable(luminance, chrominance: PSmallInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetQtable';

{ As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0. }
function JpgCodSetQtableEx(luminance, chrominance: PSmallInt; count: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetQtableEx';

{ Sets a comment for the next stream only. }
procedure JpgCodSetComment(text: PByte; length: LongWord);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'JpgCodSetComment';

// Targa, Q0, RAW, Photo CD and icon files

{ Reads an uncompressed 24-bit Targa file (image type 2), with either origin. }
function Targa24Read(name: PAnsiChar; out width, height: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Targa24Read';

{ Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with its origin at
  the bottom left. }
function Targa24Write(name: PAnsiChar; dib: HGLOBAL; x, y, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Targa24Write';

{ Reads a Q0 file. }
function Q0Read(name: PAnsiChar; out width, height, bits: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Q0Read';

{ Reads a RAW file. }
function RawRead(name: PAnsiChar; out width, height, bits: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'RawRead';

{ Reads a Photo CD image with the Photo CD access library, which is loaded for the length of the
  call by the name PCDLIB32.DLL and the system's search rules. }
function PcdRead(name: PAnsiChar; resolution: LongInt; progress: KirvoUIntPtr;
  out width, height: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'PcdRead';

{ Lists the images of an icon or cursor file by its directory. }
function IcoGetInfo(name: PAnsiChar; records: Pointer; size: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'IcoGetInfo';

{ Lists the images of an icon or cursor file by their own headers. }
function IcoGetInfoEx(name: PAnsiChar; records: Pointer; size: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'IcoGetInfoEx';

{ Reads one image of an icon or cursor file, and its transparency mask. }
function IcoGetData(name: PAnsiChar; index: LongInt; out width, height, bits: LongWord;
  out status: LongInt; mask: PKirvoHandle): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'IcoGetData';

// Copy and compose

{ Copies a rectangle into an image that was made of exactly its size. }
function Dib24Copy(to_, from: HGLOBAL; left, top, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Copy';

{ Copies a rectangle between two images of any sizes and one depth. }
function Dib24CopyEx(to_: HGLOBAL; to_left, to_top: LongInt; from: HGLOBAL;
  from_left, from_top, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24CopyEx';

{ Duplicates a rectangle into a new image of the same depth, with its colour table or masks. }
function Dib24DupEx(from: HGLOBAL; left, top, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24DupEx';

{ Composes a rectangle of one image onto one of the same size of another. }
function Dib24Add(to_: HGLOBAL; to_left, to_top: LongInt; from: HGLOBAL;
  from_left, from_top, width, height, mode: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Add';

{ Sets the key colour of Dib24Add for the whole process. }
procedure SetKeyColorDib24Add(colour: LongWord);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'SetKeyColorDib24Add';

// Flip, mirror, turn

{ Turns a rectangle upside down, in place. }
function Dib24Flip(dib: HGLOBAL; left, top, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Flip';

{ Exchanges left and right in a rectangle, in place. }
function Dib24Mirror(dib: HGLOBAL; left, top, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mirror';

{ Turns a rectangle by 180 degrees, in place. }
function Dib24FlipMirror(dib: HGLOBAL; left, top, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24FlipMirror';

{ Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
  colour table or masks. }
function Dib24Rotate(dib: HGLOBAL; left, top, width, height, direction: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Rotate';

// Zoom

{ Resizes a rectangle into a new image by taking the nearest pixel. }
function Dib24ZoomEx(dib: HGLOBAL; left, top, width, height, new_width, new_height: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24ZoomEx';

{ Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with 32-bit
  coordinates, or by averaging. }
function Dib24ZoomEx2(dib: HGLOBAL; left, top, width, height, new_width, new_height: LongInt;
  out status: LongInt; smooth: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24ZoomEx2';

// Tone

{ Inverts a rectangle in place. }
function Dib24Negative(dib: HGLOBAL; x, y, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Negative';

{ Exchanges the channels of a rectangle in place. }
function Dib24RGBChange(dib: HGLOBAL; mode, x, y, width, height: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24RGBChange';

{ Brightens or darkens. }
function Dib24Brightness(dib: HGLOBAL; x, y, width, height, level: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Brightness';

{ Raises or lowers the contrast around mid-grey. }
function Dib24Contrast(dib: HGLOBAL; x, y, width, height, level: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Contrast';

{ Turns a rectangle to grey. }
function Dib24Monochrome(dib: HGLOBAL; x, y, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Monochrome';

{ Halves the intensity. }
function Dib24HalfTone(dib: HGLOBAL; x, y, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24HalfTone';

{ Multiplies all channels by a fraction. }
function Dib24ToneCtrl(dib: HGLOBAL; x, y, width, height, numerator, denominator: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24ToneCtrl';

{ Multiplies each channel by its factor. }
function Dib24ToneCtrlEx(dib: HGLOBAL; x, y, width, height: LongInt; red, green, blue: Double;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24ToneCtrlEx';

{ Corrects the gamma. }
function Dib24Gamma(dib: HGLOBAL; x, y, width, height: LongInt; gamma: Double;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Gamma';

{ Corrects the gamma of each channel, as Dib24Gamma does. }
function DibGammaEx(dib: HGLOBAL; x, y, width, height: LongInt; red, green, blue: Double;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibGammaEx';

{ Separates the channels. }
function Dib24Separate(dib: HGLOBAL; x, y, width, height: LongInt;
  red, green, blue: PKirvoHandle): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Separate';

{ Maps every channel through a table. }
function DibColorMapEx(dib: HGLOBAL; x, y, width, height: LongInt; table: PByte;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibColorMapEx';

// Hue and HSV

{ Converts a colour to hue, saturation and value. }
procedure RGB2HSV(red, green, blue: LongInt; out hue, saturation, value: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'RGB2HSV';

{ Saturation and value of a colour. }
procedure RGB2SV(red, green, blue: LongInt; out saturation, value: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'RGB2SV';

{ Value of a colour. }
function RGB2V(red, green, blue: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'RGB2V';

{ Converts hue, saturation and value to a colour. }
procedure HSV2RGB(hue, saturation, value: LongInt; out red, green, blue: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'HSV2RGB';

{ Changes the hue of a whole image in place. }
function DibModifyHue(dib: HGLOBAL; mode, value: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibModifyHue';

{ Makes a copy of a rectangle with its hue changed. }
function DibModifyHueEx(dib: HGLOBAL; x, y, width, height, mode, value: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibModifyHueEx';

// Filters

{ Blurs a rectangle with a fixed 3 x 3 kernel. }
function Dib24Gausian(dib: HGLOBAL; x, y, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Gausian';

{ Sets the kernel of DibFilter3x3, for the life of the process. }
procedure SetFilter3x3(k0, k1, k2, k3, k4, k5, k6, k7, k8, divisor: LongInt);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'SetFilter3x3';

{ Filters a rectangle with the kernel of SetFilter3x3. }
function DibFilter3x3(dib: HGLOBAL; x, y, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibFilter3x3';

{ Sets the mask of Dib24Mix3X3, for the life of the process. }
procedure Dib24Mix3X3SetMask(weights: PInteger);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mix3X3SetMask';

{ Sets the mask of Dib24Mix5X5, for the life of the process. }
procedure Dib24Mix5X5SetMask(weights: PInteger);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mix5X5SetMask';

{ Draws the 3 x 3 neighbours of one pixel towards its colour, in place. }
function Dib24Mix3X3(dib: HGLOBAL; x, y: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mix3X3';

{ Draws the 5 x 5 neighbours of one pixel towards its colour, in place. }
function Dib24Mix5X5(dib: HGLOBAL; x, y: LongInt): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mix5X5';

{ Sharpens a rectangle, or shows its edges in grey. }
function Dib24Sharpen(dib: HGLOBAL; x, y, width, height, mode: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Sharpen';

{ Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength. }
function Dib24SharpenEx(dib: HGLOBAL; x, y, width, height, strength: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24SharpenEx';

{ Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the rows
  included. }
function Dib24ColorEdge(dib: HGLOBAL; x, y, width, height, threshold, mode: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24ColorEdge';

{ Keeps channel values by range. }
function Dib24Filter(dib: HGLOBAL; x, y, width, height: LongInt; red, green, blue: LongWord;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Filter';

{ Keeps pixels or channels by ranges in RGB or HSV. }
function Dib24FilterEx(dib: HGLOBAL; x, y, width, height: LongInt;
  range0, range1, range2, range3, range4: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24FilterEx';

// Patterns, mosaics and histograms

{ Mosaic of a 24-bit image. }
function Dib24Mosaic(dib: HGLOBAL; x, y, width, height, block: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Mosaic';

{ Mosaic by samples. }
function DibMosaicEx(dib: HGLOBAL; x, y, width, height, block: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibMosaicEx';

{ Mosaic by averages. }
function DibMosaicEx2(dib: HGLOBAL; x, y, width, height, block: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibMosaicEx2';

{ XORs a colour over a rectangle, in place. }
function Dib24XOR(dib: HGLOBAL; x, y, width, height: LongInt; colour: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24XOR';

{ Counts how often each channel value occurs in a rectangle. }
function DibHistgram(dib: HGLOBAL; x, y, width, height: LongInt;
  red, green, blue: PKirvoLongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibHistgram';

{ Counts the different colours of an image. }
function DibCountColors(dib: HGLOBAL; out count: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibCountColors';

{ Makes an image of one colour. }
function Dib24Solid(width, height, bits: LongInt; colour: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Solid';

{ Makes a horizontal gradient. }
function Dib24Gradation1(width, height, bits: LongInt; start, end_: LongWord;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Gradation1';

{ Makes a vertical gradient, from start at the top to end at the bottom. }
function Dib24Gradation2(width, height, bits: LongInt; start, end_: LongWord;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Gradation2';

{ Makes a bilinear gradient between four corners. }
function Dib24Gradation3(width, height, bits: LongInt;
  top_left, top_right, bottom_left, bottom_right: LongWord; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24Gradation3';

{ Interleaves the rows of two images. }
function Dib24InterLeave(first: HGLOBAL; x1, y1: LongInt; second: HGLOBAL;
  x2, y2, width, height: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Dib24InterLeave';

{ Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels. }
function DibBlockMxM(dib: HGLOBAL; x, y, width, height, radius, maximum, luminance: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibBlockMxM';

// Depth conversion

{ Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248. }
function DibConvert24bit(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibConvert24bit';

{ Makes a 16-bit image of a 24- or 32-bit one. }
function DibConvert16bit(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibConvert16bit';

{ Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and
  0x000000FF. }
function DibConvert32bit(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibConvert32bit';

{ Makes a copy of a 24-bit image that keeps only the top bits of each channel. }
function DibCutDepth(dib: HGLOBAL; red_bits, green_bits, blue_bits: LongInt;
  out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibCutDepth';

// Colour reduction

{ Makes an 8-bit image with error diffusion to 256 fixed colours. }
function DecreaseColor256(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DecreaseColor256';

{ Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed colours. }
function DecreaseColor16(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DecreaseColor16';

{ Makes an 8-bit grey image, without diffusion. }
function DecreaseColorMono256(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DecreaseColorMono256';

{ Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
  pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255. }
function Decrease256Fast(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Decrease256Fast';

{ Makes an 8-bit image with exactly the colours of the source. }
function Decrease256PaletteEx(dib: HGLOBAL; mode: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Decrease256PaletteEx';

{ Decrease256PaletteEx with mode 0. }
function Decrease256Palette(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Decrease256Palette';

{ Makes a 4-bit image with exactly the colours of the source. }
function Decrease16PaletteEx(dib: HGLOBAL; mode: LongInt; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Decrease16PaletteEx';

{ Decrease16PaletteEx with mode 0. }
function Decrease16Palette(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'Decrease16Palette';

{ Makes a 24-bit image of an indexed one. }
function IncreaseColor16M(dib: HGLOBAL; out status: LongInt): HGLOBAL;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'IncreaseColor16M';

// Single pixels and lines

{ Reads one pixel of an image of any depth. }
function DibGetPixelColor(dib: HGLOBAL; x, y: LongInt; out colour: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibGetPixelColor';

{ Writes one pixel of a direct-colour image. }
function DibSetPixelColor(dib: HGLOBAL; x, y: LongInt; colour: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibSetPixelColor';

{ Fills the pixels x0 to x1 (inclusive) of one row with a colour. }
function DibSetLineColor(dib: HGLOBAL; x0, x1, y: LongInt; colour: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'DibSetLineColor';

// Window fitting

{ Resizes a window so that its client area shows an image at a whole scale. }
procedure FitWindowToImageEx(window: HWND; dib: HGLOBAL; scale: LongWord);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'FitWindowToImageEx';

{ FitWindowToImageEx at scale 1. }
procedure FitWindowToImage(window: HWND; dib: HGLOBAL);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoLibrary name 'FitWindowToImage';

// Conveniences of this unit

type
  { A status code other than KIRVO_OK. }
  EKirvo = class(Exception)
  public
    Status: LongInt;
  end;

  { Receives percentages: 0, then steps of at least 5, and 100 at the end. }
  TKirvoProgress = procedure(percent: LongInt);

{ The name and the meaning of a status code. }
function KirvoMessage(status: LongInt): string;

{ Raises EKirvo unless the status is KIRVO_OK. }
procedure KirvoCheck(status: LongInt);

{ The next long operation reports its progress to a procedure; nil ends that. A program with a window
  of its own may instead have WM_COMMAND sent there: KirvoSetProcess. Away from Windows this sets the
  window host. }
procedure KirvoWatch(progress: TKirvoProgress);

implementation

function KirvoMessage(status: LongInt): string;
begin
  case status of
    KIRVO_OK:
      Result := 'KIRVO_OK: ' +
        'Success.';
    KIRVO_BAD_PARAMETER:
      Result := 'KIRVO_BAD_PARAMETER: ' +
        'A rectangle that is empty, negative or outside the image, a value out of its range, or a' +
        ' block of memory smaller than its header says.';
    KIRVO_NO_MEMORY:
      Result := 'KIRVO_NO_MEMORY: ' +
        'Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 ' +
        'bytes, or a JPEG stream has outgrown its block.';
    KIRVO_NULL_HANDLE:
      Result := 'KIRVO_NULL_HANDLE: ' +
        'Null handle, null data, or a handle that is freed or invented.';
    KIRVO_CANNOT_OPEN:
      Result := 'KIRVO_CANNOT_OPEN: ' +
        'A file could not be opened or created.';
    KIRVO_READ_ERROR:
      Result := 'KIRVO_READ_ERROR: ' +
        'A read error, or a file that is too short.';
    KIRVO_WRITE_ERROR:
      Result := 'KIRVO_WRITE_ERROR: ' +
        'A write error: the disk is full or was taken away.';
    KIRVO_JPEG_NO_SOI:
      Result := 'KIRVO_JPEG_NO_SOI: ' +
        'JPEG: no start of image.';
    KIRVO_JPEG_MARKER:
      Result := 'KIRVO_JPEG_MARKER: ' +
        'JPEG: a marker that does not belong into the entropy-coded data.';
    KIRVO_JPEG_EARLY_EOI:
      Result := 'KIRVO_JPEG_EARLY_EOI: ' +
        'JPEG: end of image before the first scan.';
    KIRVO_JPEG_HEADER:
      Result := 'KIRVO_JPEG_HEADER: ' +
        'JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer.';
    KIRVO_JPEG_HUFFMAN:
      Result := 'KIRVO_JPEG_HUFFMAN: ' +
        'JPEG: a Huffman code that does not exist, or a table that was not defined.';
    KIRVO_JPEG_CATEGORY:
      Result := 'KIRVO_JPEG_CATEGORY: ' +
        'JPEG encoder: a coefficient that has no code.';
    KIRVO_ABANDONED:
      Result := 'KIRVO_ABANDONED: ' +
        'The caller has abandoned a piecewise encode or decode.';
    KIRVO_BUSY:
      Result := 'KIRVO_BUSY: ' +
        'Another encode or decode is in progress.';
    KIRVO_JPEG_FRAME:
      Result := 'KIRVO_JPEG_FRAME: ' +
        'JPEG: a frame type other than baseline and progressive Huffman coding.';
    KIRVO_NOT_BMP:
      Result := 'KIRVO_NOT_BMP: ' +
        'Not a BMP file, or a depth that BMP files do not have.';
    KIRVO_NEEDS_8:
      Result := 'KIRVO_NEEDS_8: ' +
        'The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them.';
    KIRVO_NEEDS_24:
      Result := 'KIRVO_NEEDS_24: ' +
        'The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them.';
    KIRVO_NOT_TARGA:
      Result := 'KIRVO_NOT_TARGA: ' +
        'Not an uncompressed 24-bit Targa file.';
    KIRVO_Q0_SIZE:
      Result := 'KIRVO_Q0_SIZE: ' +
        'The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short' +
        ' for it.';
    KIRVO_NOT_RAW:
      Result := 'KIRVO_NOT_RAW: ' +
        'Not a RAW file, or one too short for its size.';
    KIRVO_RAW_PALETTE:
      Result := 'KIRVO_RAW_PALETTE: ' +
        'A RAW file with a palette, which the reader does not offer.';
    KIRVO_MORE_THAN_256:
      Result := 'KIRVO_MORE_THAN_256: ' +
        'More than 256 different colours (239 and the system colours in mode 0).';
    KIRVO_MORE_THAN_16:
      Result := 'KIRVO_MORE_THAN_16: ' +
        'More than 16 different colours, or in mode 0 others than the system colours.';
    KIRVO_NOT_ICON:
      Result := 'KIRVO_NOT_ICON: ' +
        'Not an icon or cursor file.';
    KIRVO_NEEDS_8_16_24_32:
      Result := 'KIRVO_NEEDS_8_16_24_32: ' +
        'The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.';
    KIRVO_NEEDS_16_24_32:
      Result := 'KIRVO_NEEDS_16_24_32: ' +
        'The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.';
    KIRVO_NEEDS_24_32:
      Result := 'KIRVO_NEEDS_24_32: ' +
        'The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24.';
    KIRVO_NEEDS_8_24_32:
      Result := 'KIRVO_NEEDS_8_24_32: ' +
        'The image must have 8, 24 or 32 bits.';
    KIRVO_NEEDS_16_32:
      Result := 'KIRVO_NEEDS_16_32: ' +
        'The image must have 16 or 32 bits.';
    KIRVO_NEEDS_1_4_8:
      Result := 'KIRVO_NEEDS_1_4_8: ' +
        'The image must have 1, 4 or 8 bits.';
    KIRVO_NEEDS_8_24:
      Result := 'KIRVO_NEEDS_8_24: ' +
        'The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24.';
    KIRVO_NEEDS_16_24:
      Result := 'KIRVO_NEEDS_16_24: ' +
        'The image must have 16 or 24 bits.';
  else
    Result := 'status ' + IntToStr(status);
  end;
end;

procedure KirvoCheck(status: LongInt);
var
  error: EKirvo;
begin
  if status = KIRVO_OK then
    Exit;
  error := EKirvo.Create(KirvoMessage(status));
  error.Status := status;
  raise error;
end;

const
  WatchCommand = 1;

var
  Watcher: TKirvoProgress = nil;

threadvar
  WatchWindow: HWND; // one for each thread, so that no other has to fetch its messages

procedure Receive(command: KirvoUIntPtr; percent: KirvoIntPtr);
begin
  if (command = WatchCommand) and Assigned(Watcher) then
    Watcher(LongInt(percent));
end;

{$IFDEF MSWINDOWS}

function ReceiveMessage(window: HWND; message: UINT; wparam: WPARAM; lparam: LPARAM): LRESULT;
  stdcall;
begin
  Result := 0;
  if message = WM_COMMAND then
    Receive(wparam, lparam)
  else
    Result := DefWindowProcA(window, message, wparam, lparam);
end;

procedure OpenWatchWindow;
const
  Name: PAnsiChar = 'KirvoProgress';
  MessagesOnly = not HWND(2); // HWND_MESSAGE, -3
var
  window: TWndClassA;
begin
  FillChar(window, SizeOf(window), 0);
  window.lpfnWndProc := @ReceiveMessage;
  window.hInstance := HInstance;
  window.lpszClassName := Name;
  Windows.RegisterClassA({$IFDEF FPC} @window {$ELSE} window {$ENDIF});
  WatchWindow := CreateWindowExA(0, Name, nil, 0, 0, 0, 0, 0, MessagesOnly, 0, HInstance, nil);
end;

{$ELSE}

function ReceiveMessage(window: HWND; message: LongWord; wparam: KirvoUIntPtr;
  lparam: KirvoIntPtr): KirvoIntPtr; cdecl;
begin
  Result := 0;
  Receive(wparam, lparam);
end;

procedure OpenWatchWindow;
var
  host: TKirvoWindowHost;
begin
  FillChar(host, SizeOf(host), 0);
  host.SendMessageA := @ReceiveMessage;
  KirvoSetWindowHost(@host);
  WatchWindow := 1;
end;

{$ENDIF}

procedure KirvoWatch(progress: TKirvoProgress);
begin
  Watcher := progress;
  if WatchWindow = 0 then
    OpenWatchWindow;
  KirvoSetProcess(WatchWindow, WatchCommand, Ord(Assigned(progress)));
end;

end.
