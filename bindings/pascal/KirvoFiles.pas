{ KirvoFiles: pictures as people have them, opened into packed DIBs and saved again, for Delphi (7 and
  later) and Free Pascal.

  The program needs KirvoFiles.dll and Kirvo.dll on Windows, libkirvofiles.so and libkirvo.so
  elsewhere. PAnsiChar is UTF-8; the functions that end in W take WideStrings. What every function
  does is written in kirvo_files.h, under the same names.

  Written by script/bindings from interface/kirvo_files.txt: changes belong there. }
unit KirvoFiles;

{$IFDEF FPC}
  {$MODE DELPHI}
  {$PACKRECORDS C}
{$ELSE}
  {$A8}
{$ENDIF}

interface

uses
  {$IFDEF MSWINDOWS} Windows, {$ENDIF} SysUtils, Kirvo;

const
  KirvoFilesLibrary = {$IFDEF MSWINDOWS} 'KirvoFiles.dll' {$ELSE} 'libkirvofiles.so' {$ENDIF};

  // Success.
  KIRVO_FILES_OK = 0;
  // A null pointer, a value out of its range, a structure whose size is none of this library's, or
  // an image whose block is smaller than its header says.
  KIRVO_FILES_BAD_PARAMETER = -101;
  // Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes.
  KIRVO_FILES_NO_MEMORY = -102;
  // There is no file or folder of that name.
  KIRVO_FILES_MISSING = -103;
  // The name is that of a folder.
  KIRVO_FILES_IS_FOLDER = -104;
  // The system does not permit it.
  KIRVO_FILES_NO_PERMISSION = -105;
  // The file cannot be opened for another reason; the reason's text has the system's words.
  KIRVO_FILES_CANNOT_OPEN = -106;
  // The system failed to read what is in the file.
  KIRVO_FILES_READ_ERROR = -107;
  // The file cannot be made, written or put into its place.
  KIRVO_FILES_CANNOT_WRITE = -108;
  // The disk is full, or the user's share of it.
  KIRVO_FILES_DISK_FULL = -109;
  // There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for.
  KIRVO_FILES_EXISTS = -110;
  // The file is empty: it has no bytes at all.
  KIRVO_FILES_EMPTY = -111;
  // The content is no picture of a known format.
  KIRVO_FILES_NOT_A_PICTURE = -112;
  // The picture ends before all of its rows are there.
  KIRVO_FILES_ENDS_EARLY = -113;
  // The picture is damaged.
  KIRVO_FILES_DAMAGED = -114;
  // The format is known, but not this variant of it.
  KIRVO_FILES_UNSUPPORTED = -115;
  // The format is known, but this build or this system has no decoder or encoder for it.
  KIRVO_FILES_NO_CODEC = -116;
  // The file claims a size out of all proportion to its bytes; see KIRVO_FILES_NO_LIMITS.
  KIRVO_FILES_CLAIM_TOO_LARGE = -117;
  // The format is not one that is written, or the name does not tell a format.
  KIRVO_FILES_NOT_WRITTEN = -118;
  // The format has no room for a picture this large; or a file of 2 GB or more.
  KIRVO_FILES_TOO_LARGE = -119;
  // The picture does not become so small as was asked for.
  KIRVO_FILES_SIZE_LIMIT = -120;
  // A turn without loss would cut or keep an edge, and neither was allowed.
  KIRVO_FILES_EDGE = -121;
  // A frame was asked for that the file does not have.
  KIRVO_FILES_NO_FRAME = -122;
  // The caller has abandoned the operation through a progress handler of kirvo.h.
  KIRVO_FILES_ABANDONED = -123;
  // such files can be opened
  KIRVO_FILES_READS = 1;
  // such files can be saved
  KIRVO_FILES_WRITES = 2;
  // none, or to be told by the name
  KIRVO_FILES_UNKNOWN = 0;
  // Windows and OS/2 bitmaps
  KIRVO_FILES_BMP = 1;
  // JPEG
  KIRVO_FILES_JPEG = 2;
  // PNG
  KIRVO_FILES_PNG = 3;
  // Targa
  KIRVO_FILES_TARGA = 4;
  // TIFF
  KIRVO_FILES_TIFF = 5;
  // WebP
  KIRVO_FILES_WEBP = 6;
  // GIF
  KIRVO_FILES_GIF = 7;
  // icons
  KIRVO_FILES_ICON = 8;
  // cursors
  KIRVO_FILES_CURSOR = 9;
  // Q0, with its companion file
  KIRVO_FILES_Q0 = 10;
  // RAW, as RawRead of kirvo.h describes it
  KIRVO_FILES_RAW = 11;
  // Photo CD, with its maker's library
  KIRVO_FILES_PHOTO_CD = 12;
  // HEIC and AVIF, on Windows where the system has a decoder
  KIRVO_FILES_HEIF = 13;
  // cameras' own formats, on Windows where the system has a decoder
  KIRVO_FILES_CAMERA = 14;
  // one above the last
  KIRVO_FILES_FORMATS = 15;
  // "PNG"
  KIRVO_FILES_FORMAT_NAME = 0;
  // "jpg jpeg jpe jfif", the usual one first
  KIRVO_FILES_FORMAT_EXTENSIONS = 1;
  // by what it is read and written: "Kirvo, libjpeg-turbo 2.1.5"
  KIRVO_FILES_FORMAT_CODEC = 2;
  // opening: rows as stored, whatever the EXIF orientation says
  KIRVO_FILES_NO_TURN = 1;
  // opening: a picture with alpha gets 32 bits, alpha on top
  KIRVO_FILES_KEEP_ALPHA = 2;
  // opening: what there is of a damaged or short file
  KIRVO_FILES_KEEP_GOING = 4;
  // opening: claims of any size are believed
  KIRVO_FILES_NO_LIMITS = 8;
  // opening: JPEG by Kirvo's decoder, come what may
  KIRVO_FILES_KIRVO_ONLY = 16;
  // opening: alpha is laid over the options' background
  KIRVO_FILES_BACKGROUND = 32;
  // description: the file's picture has transparency
  KIRVO_FILES_HAS_ALPHA = 1;
  // description: progressive or interlaced
  KIRVO_FILES_PROGRESSIVE = 2;
  // description: the file's coding loses nothing
  KIRVO_FILES_LOSSLESS = 4;
  // description: the file's colours are cyan to black
  KIRVO_FILES_CMYK = 8;
  // description: the file stores its top row first
  KIRVO_FILES_TOP_DOWN = 16;
  // description: latitude and longitude are known
  KIRVO_FILES_HAS_PLACE = 32;
  // description: a JPEG with arithmetic coding
  KIRVO_FILES_ARITHMETIC = $0040;
  // there is no such note
  KIRVO_FILES_NOTE_NONE = 0;
  // "ends early: whole to row 320 of 480"
  KIRVO_FILES_NOTE_ENDS_EARLY = 1;
  // a part is damaged, and what is there was taken
  KIRVO_FILES_NOTE_DAMAGED = 2;
  // the headers contradict each other; the pixels are whole
  KIRVO_FILES_NOTE_REPAIRED = 3;
  // "alpha laid over the background"
  KIRVO_FILES_NOTE_ALPHA = 4;
  // "animation: number 1 of 12"
  KIRVO_FILES_NOTE_FRAMES = 5;
  // "16 bits a channel reduced to 8", "CMYK converted"
  KIRVO_FILES_NOTE_REDUCED = 6;
  // "turned upright (orientation 6)"
  KIRVO_FILES_NOTE_TURNED = 7;
  // "decoded by libjpeg-turbo: progressive"
  KIRVO_FILES_NOTE_DECODER = 8;
  // what was taken to save: a level, a quality, an encoder
  KIRVO_FILES_NOTE_ENCODER = 9;
  // "XMP left out: BMP files have no place for it"
  KIRVO_FILES_NOTE_METADATA = 10;
  // anything else
  KIRVO_FILES_NOTE_TEXT = 11;
  // why the call failed, in particular: "photo.jpg: Permission denied", without a full stop
  KIRVO_FILES_TEXT_REASON = 0;
  // the words of a note
  KIRVO_FILES_TEXT_NOTE = 1;
  // "progressive, YCbCr 4:2:0", "V5 header, RLE8"
  KIRVO_FILES_TEXT_VARIANT = 2;
  // by what it was decoded or encoded: "Kirvo"
  KIRVO_FILES_TEXT_DECODER = 3;
  // maker and model
  KIRVO_FILES_TEXT_CAMERA = 4;
  // the lens
  KIRVO_FILES_TEXT_LENS = 5;
  // when it was taken: "2023-05-01 12:30:00"
  KIRVO_FILES_TEXT_DATE = 6;
  // "1/250 s, f/2.8, ISO 100, 35 mm"
  KIRVO_FILES_TEXT_EXPOSURE = 7;
  // "35.68950, 139.69170"
  KIRVO_FILES_TEXT_PLACE = 8;
  // the ICC profile's name
  KIRVO_FILES_TEXT_PROFILE = 9;
  // what made the file
  KIRVO_FILES_TEXT_SOFTWARE = 10;
  // who made the picture
  KIRVO_FILES_TEXT_ARTIST = 11;
  // whose it is
  KIRVO_FILES_TEXT_COPYRIGHT = 12;
  // what it shows
  KIRVO_FILES_TEXT_TITLE = 13;
  // JPEG: the first comment, in one line
  KIRVO_FILES_TEXT_COMMENT = 14;
  // EXIF, a TIFF structure that begins with II or MM
  KIRVO_FILES_DATA_EXIF = 0;
  // the ICC profile
  KIRVO_FILES_DATA_ICC = 1;
  // XMP, UTF-8 text
  KIRVO_FILES_DATA_XMP = 2;
  // JPEG: up to four quantisation tables one after the other, each 64 numbers of 16 bits, row by
  // row
  KIRVO_FILES_DATA_QUANTISERS = 3;
  // the file's palette, 4 bytes an entry: blue, green, red, 0
  KIRVO_FILES_DATA_PALETTE = 4;
  // JPEG: the first comment
  KIRVO_FILES_DATA_COMMENT = 5;
  // saving: without the metadata that the source came with
  KIRVO_FILES_STRIP = 1;
  // saving: not where there is a file already
  KIRVO_FILES_NEW_ONLY = 2;
  // saving: without colour
  KIRVO_FILES_GREY = 4;
  // saving: the top byte of 32 bits is alpha
  KIRVO_FILES_WITH_ALPHA = 8;
  // saving: Targa with run lengths
  KIRVO_FILES_RLE = 16;
  // saving: WebP without loss
  KIRVO_FILES_WEBP_LOSSLESS = 32;
  // saving: JPEG without the source's tables and sampling
  KIRVO_FILES_FRESH = $0040;
  // LZW
  KIRVO_FILES_COMPRESSION_USUAL = 0;
  // none
  KIRVO_FILES_COMPRESSION_NONE = 1;
  // LZW
  KIRVO_FILES_COMPRESSION_LZW = 2;
  // Deflate
  KIRVO_FILES_COMPRESSION_DEFLATE = 3;
  // PackBits
  KIRVO_FILES_COMPRESSION_PACKBITS = 4;
  // as its EXIF orientation says
  KIRVO_FILES_TURN_UPRIGHT = 0;
  // a quarter clockwise
  KIRVO_FILES_TURN_90 = 1;
  // a half
  KIRVO_FILES_TURN_180 = 2;
  // a quarter counter-clockwise
  KIRVO_FILES_TURN_270 = 3;
  // top to bottom
  KIRVO_FILES_TURN_FLIP = 4;
  // left to right
  KIRVO_FILES_TURN_MIRROR = 5;
  // nothing is written; the answer is KIRVO_FILES_EDGE
  KIRVO_FILES_EDGES_FAIL = 0;
  // they are cut off; a note says how much
  KIRVO_FILES_EDGES_TRIM = 1;
  // they stay where they are, unturned; a note says so
  KIRVO_FILES_EDGES_KEEP = 2;

type
  { What is known of a file: nil is nothing. }
  TKirvoFile = Pointer;
  PKirvoFile = ^TKirvoFile;

  { How to open. }
  TKirvoFilesOpenOptions = record
    size: LongWord; // bytes of this structure
    flags: LongWord; // KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND, added
    background: LongWord; // 0x00BBGGRR, with KIRVO_FILES_BACKGROUND; otherwise white
    frame: LongWord; // which picture of the file, from 1; 0: of an icon the one with the most pixels, then the most// colours, of other files the first
  end;
  PKirvoFilesOpenOptions = ^TKirvoFilesOpenOptions;

  { A file in numbers. }
  TKirvoFilesDescription = record
    size: LongWord; // bytes of this structure, set by the caller
    format: LongInt; // a #KirvoFilesFormat
    width: LongWord; // pixels, of the picture as it opens: turned upright
    height: LongWord; // pixels, likewise
    fileBits: LongWord; // bits of a pixel in the file
    channels: LongWord; // 1 grey or palette, 2 grey and alpha, 3 colour, 4 and alpha or CMYK
    colours: LongWord; // entries of the file's palette; 0 without one
    dibBits: LongWord; // bits of a pixel of the picture that was opened; 0 of information
    flags: LongWord; // KIRVO_FILES_HAS_ALPHA to KIRVO_FILES_ARITHMETIC, added
    orientation: LongWord; // EXIF's 1 to 8; 1 where the file says nothing
    frames: LongWord; // pictures in the file: frames, pages or images of an icon
    frame: LongWord; // which one this is, from 1
    quality: LongWord; // JPEG: quality 1 to 100 that the tables are nearest to
    sampleAcross: LongWord; // JPEG: luma samples for a chroma sample across: 1, 2 or 4
    sampleDown: LongWord; // JPEG: likewise down
    fileBytes: LongWord; // bytes of the file
    wholeRows: LongWord; // rows that are good, in the order that the file stores them; of a damaged file there may be fewer
    notes: LongWord; // number of notes
    dpiAcross: Double; // dots an inch across
    dpiDown: Double; // dots an inch down
    latitude: Double; // degrees, north above 0, with KIRVO_FILES_HAS_PLACE
    longitude: Double; // degrees, east above 0, with KIRVO_FILES_HAS_PLACE
  end;
  PKirvoFilesDescription = ^TKirvoFilesDescription;

  { How to save. }
  TKirvoFilesSaveOptions = record
    size: LongWord; // bytes of this structure
    format: LongInt; // a #KirvoFilesFormat; 0: by the name's extension
    flags: LongWord; // KIRVO_FILES_STRIP to KIRVO_FILES_FRESH, added
    quality: LongWord; // JPEG and WebP: 1 to 100; 0: of a JPEG from a JPEG the source's tables, otherwise 90
    level: LongWord; // JPEG: quality level 1 to 5 of Kirvo's encoder in place of quality; or 0
    subsample: LongWord; // JPEG: 1, 2 or 4 as JpgCodSetSubsample; 0: the source's, otherwise 1 from quality 90 or with level// 1, 4 below
    sizeLimit: LongWord; // JPEG and WebP: the best quality (at most the one asked for) whose file has no more than so many// bytes; 0: any
    bits: LongWord; // BMP, PNG, Targa and TIFF: bits of a pixel, 8, 16, 24 or 32 (16 not for PNG and TIFF); from// palettes to more and between 16, 24 and 32, nothing else; 0: the image's
    compression: LongInt; // TIFF: a #KirvoFilesCompression
    reserved: LongWord; // 0
    dpiAcross: Double; // dots an inch across; 0: the source's
    dpiDown: Double; // dots an inch down; 0: the source's
  end;
  PKirvoFilesSaveOptions = ^TKirvoFilesSaveOptions;

// Status codes of KirvoFiles

{ A status in words, in English. }
function KirvoFilesStatusText(status: LongInt; text: PAnsiChar; capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesStatusText';

// Formats

{ What can be done with a format in this build, on this system. }
function KirvoFilesAbilities(format: LongInt): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesAbilities';

{ A word about a format. }
function KirvoFilesFormatText(format, word: LongInt; text: PAnsiChar; capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesFormatText';

{ The format that a name tells. }
function KirvoFilesFormatOf(name: PAnsiChar): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesFormatOf';

// Open and inform

{ Opens a picture, whatever its format. }
function KirvoFilesOpen(name: PAnsiChar; options: PKirvoFilesOpenOptions; out dib: HGLOBAL;
  file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesOpen';

{ KirvoFilesOpen with a UTF-16 name. }
function KirvoFilesOpenW(name: PWideChar; options: PKirvoFilesOpenOptions; out dib: HGLOBAL;
  file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesOpenW';

{ KirvoFilesOpen of a file that is in memory. }
function KirvoFilesOpenMemory(bytes: Pointer; count: LongWord; options: PKirvoFilesOpenOptions;
  out dib: HGLOBAL; file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesOpenMemory';

{ What the headers of a file say. }
function KirvoFilesInfo(name: PAnsiChar; options: PKirvoFilesOpenOptions;
  out file_: TKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesInfo';

{ KirvoFilesInfo with a UTF-16 name. }
function KirvoFilesInfoW(name: PWideChar; options: PKirvoFilesOpenOptions;
  out file_: TKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesInfoW';

{ KirvoFilesInfo of a file that is in memory. }
function KirvoFilesInfoMemory(bytes: Pointer; count: LongWord; options: PKirvoFilesOpenOptions;
  out file_: TKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesInfoMemory';

{ Frees what is known of a file. }
procedure KirvoFilesClose(file_: TKirvoFile);
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesClose';

// What is known of a file

{ A file in numbers. }
function KirvoFilesDescribe(file_: TKirvoFile; var description: TKirvoFilesDescription): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesDescribe';

{ What a note is about. }
function KirvoFilesNote(file_: TKirvoFile; index: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesNote';

{ A text about a file. }
function KirvoFilesText(file_: TKirvoFile; kind: LongInt; index: LongWord; text: PAnsiChar;
  capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesText';

{ Bytes that come with a file. }
function KirvoFilesData(file_: TKirvoFile; kind: LongInt; bytes: Pointer;
  capacity: LongWord): LongWord;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesData';

{ Gives a file's metadata other bytes, to be saved with a picture, also where the rest of its
  metadata is not (KIRVO_FILES_STRIP). }
function KirvoFilesSetData(var file_: TKirvoFile; kind: LongInt; bytes: Pointer;
  count: LongWord): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesSetData';

// Save

{ Saves a picture as a file, complete or not at all. }
function KirvoFilesSave(name: PAnsiChar; dib: HGLOBAL; source: TKirvoFile;
  options: PKirvoFilesSaveOptions; file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesSave';

{ KirvoFilesSave with a UTF-16 name. }
function KirvoFilesSaveW(name: PWideChar; dib: HGLOBAL; source: TKirvoFile;
  options: PKirvoFilesSaveOptions; file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesSaveW';

{ Saves a picture into a block of memory. }
function KirvoFilesSaveMemory(dib: HGLOBAL; source: TKirvoFile; options: PKirvoFilesSaveOptions;
  out block: HGLOBAL; out count: LongWord; file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesSaveMemory';

// Turn a JPEG without loss

{ Turns a JPEG without loss. }
function KirvoFilesTurn(source, target: PAnsiChar; turning, edges: LongInt; flags: LongWord;
  file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesTurn';

{ KirvoFilesTurn with UTF-16 names. }
function KirvoFilesTurnW(source, target: PWideChar; turning, edges: LongInt; flags: LongWord;
  file_: PKirvoFile): LongInt;
  {$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF} external KirvoFilesLibrary name 'KirvoFilesTurnW';

// Conveniences of this unit

type
  { A status other than KIRVO_FILES_OK. }
  EKirvoFiles = class(Exception)
  public
    Status: LongInt;
  end;

{ The name and the meaning of a status. }
function KirvoFilesMessage(status: LongInt): string;

{ Raises EKirvoFiles unless the status is KIRVO_FILES_OK. }
procedure KirvoFilesCheck(status: LongInt);

implementation

function KirvoFilesMessage(status: LongInt): string;
begin
  case status of
    KIRVO_FILES_OK:
      Result := 'KIRVO_FILES_OK: ' +
        'Success.';
    KIRVO_FILES_BAD_PARAMETER:
      Result := 'KIRVO_FILES_BAD_PARAMETER: ' +
        'A null pointer, a value out of its range, a structure whose size is none of this ' +
        'library''s, or an image whose block is smaller than its header says.';
    KIRVO_FILES_NO_MEMORY:
      Result := 'KIRVO_FILES_NO_MEMORY: ' +
        'Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes.';
    KIRVO_FILES_MISSING:
      Result := 'KIRVO_FILES_MISSING: ' +
        'There is no file or folder of that name.';
    KIRVO_FILES_IS_FOLDER:
      Result := 'KIRVO_FILES_IS_FOLDER: ' +
        'The name is that of a folder.';
    KIRVO_FILES_NO_PERMISSION:
      Result := 'KIRVO_FILES_NO_PERMISSION: ' +
        'The system does not permit it.';
    KIRVO_FILES_CANNOT_OPEN:
      Result := 'KIRVO_FILES_CANNOT_OPEN: ' +
        'The file cannot be opened for another reason; the reason''s text has the system''s ' +
        'words.';
    KIRVO_FILES_READ_ERROR:
      Result := 'KIRVO_FILES_READ_ERROR: ' +
        'The system failed to read what is in the file.';
    KIRVO_FILES_CANNOT_WRITE:
      Result := 'KIRVO_FILES_CANNOT_WRITE: ' +
        'The file cannot be made, written or put into its place.';
    KIRVO_FILES_DISK_FULL:
      Result := 'KIRVO_FILES_DISK_FULL: ' +
        'The disk is full, or the user''s share of it.';
    KIRVO_FILES_EXISTS:
      Result := 'KIRVO_FILES_EXISTS: ' +
        'There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for.';
    KIRVO_FILES_EMPTY:
      Result := 'KIRVO_FILES_EMPTY: ' +
        'The file is empty: it has no bytes at all.';
    KIRVO_FILES_NOT_A_PICTURE:
      Result := 'KIRVO_FILES_NOT_A_PICTURE: ' +
        'The content is no picture of a known format.';
    KIRVO_FILES_ENDS_EARLY:
      Result := 'KIRVO_FILES_ENDS_EARLY: ' +
        'The picture ends before all of its rows are there.';
    KIRVO_FILES_DAMAGED:
      Result := 'KIRVO_FILES_DAMAGED: ' +
        'The picture is damaged.';
    KIRVO_FILES_UNSUPPORTED:
      Result := 'KIRVO_FILES_UNSUPPORTED: ' +
        'The format is known, but not this variant of it.';
    KIRVO_FILES_NO_CODEC:
      Result := 'KIRVO_FILES_NO_CODEC: ' +
        'The format is known, but this build or this system has no decoder or encoder for it.';
    KIRVO_FILES_CLAIM_TOO_LARGE:
      Result := 'KIRVO_FILES_CLAIM_TOO_LARGE: ' +
        'The file claims a size out of all proportion to its bytes; see KIRVO_FILES_NO_LIMITS.';
    KIRVO_FILES_NOT_WRITTEN:
      Result := 'KIRVO_FILES_NOT_WRITTEN: ' +
        'The format is not one that is written, or the name does not tell a format.';
    KIRVO_FILES_TOO_LARGE:
      Result := 'KIRVO_FILES_TOO_LARGE: ' +
        'The format has no room for a picture this large; or a file of 2 GB or more.';
    KIRVO_FILES_SIZE_LIMIT:
      Result := 'KIRVO_FILES_SIZE_LIMIT: ' +
        'The picture does not become so small as was asked for.';
    KIRVO_FILES_EDGE:
      Result := 'KIRVO_FILES_EDGE: ' +
        'A turn without loss would cut or keep an edge, and neither was allowed.';
    KIRVO_FILES_NO_FRAME:
      Result := 'KIRVO_FILES_NO_FRAME: ' +
        'A frame was asked for that the file does not have.';
    KIRVO_FILES_ABANDONED:
      Result := 'KIRVO_FILES_ABANDONED: ' +
        'The caller has abandoned the operation through a progress handler of kirvo.h.';
  else
    Result := 'status ' + IntToStr(status);
  end;
end;

procedure KirvoFilesCheck(status: LongInt);
var
  error: EKirvoFiles;
begin
  if status = KIRVO_FILES_OK then
    Exit;
  error := EKirvoFiles.Create(KirvoFilesMessage(status));
  error.Status := status;
  raise error;
end;

end.
