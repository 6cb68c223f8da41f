Attribute VB_Name = "KirvoFiles"
' KirvoFiles: pictures as people have them, opened into packed DIBs and saved again, for Visual Basic 6
' and VBA.
'
' The program needs KirvoFiles.dll and Kirvo.dll, and Kirvo.bas. Give names to the functions that end in
' W, by StrPtr(name); receive texts in arrays of Byte, by their first element. ByVal 0& is nothing
' where a parameter is As Any (in 64-bit Office ByVal CLngPtr(0)). Set the size of options by Len.
' What every function does is written in kirvo_files.h, under the same names.
'
' Written by script/bindings from interface/kirvo_files.txt: changes belong there.
Option Explicit

' What a call answers: 0 for success, below 0 for an error.
Public Enum KirvoFilesStatus
    ' Success.
    KIRVO_FILES_OK = 0
    ' A null pointer, a value out of its range, a structure whose size is none of this library's, or
    ' an image whose block is smaller than its header says.
    KIRVO_FILES_BAD_PARAMETER = -101
    ' Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes.
    KIRVO_FILES_NO_MEMORY = -102
    ' There is no file or folder of that name.
    KIRVO_FILES_MISSING = -103
    ' The name is that of a folder.
    KIRVO_FILES_IS_FOLDER = -104
    ' The system does not permit it.
    KIRVO_FILES_NO_PERMISSION = -105
    ' The file cannot be opened for another reason; the reason's text has the system's words.
    KIRVO_FILES_CANNOT_OPEN = -106
    ' The system failed to read what is in the file.
    KIRVO_FILES_READ_ERROR = -107
    ' The file cannot be made, written or put into its place.
    KIRVO_FILES_CANNOT_WRITE = -108
    ' The disk is full, or the user's share of it.
    KIRVO_FILES_DISK_FULL = -109
    ' There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for.
    KIRVO_FILES_EXISTS = -110
    ' The file is empty: it has no bytes at all.
    KIRVO_FILES_EMPTY = -111
    ' The content is no picture of a known format.
    KIRVO_FILES_NOT_A_PICTURE = -112
    ' The picture ends before all of its rows are there.
    KIRVO_FILES_ENDS_EARLY = -113
    ' The picture is damaged.
    KIRVO_FILES_DAMAGED = -114
    ' The format is known, but not this variant of it.
    KIRVO_FILES_UNSUPPORTED = -115
    ' The format is known, but this build or this system has no decoder or encoder for it.
    KIRVO_FILES_NO_CODEC = -116
    ' The file claims a size out of all proportion to its bytes; see KIRVO_FILES_NO_LIMITS.
    KIRVO_FILES_CLAIM_TOO_LARGE = -117
    ' The format is not one that is written, or the name does not tell a format.
    KIRVO_FILES_NOT_WRITTEN = -118
    ' The format has no room for a picture this large; or a file of 2 GB or more.
    KIRVO_FILES_TOO_LARGE = -119
    ' The picture does not become so small as was asked for.
    KIRVO_FILES_SIZE_LIMIT = -120
    ' A turn without loss would cut or keep an edge, and neither was allowed.
    KIRVO_FILES_EDGE = -121
    ' A frame was asked for that the file does not have.
    KIRVO_FILES_NO_FRAME = -122
    ' The caller has abandoned the operation through a progress handler of kirvo.h.
    KIRVO_FILES_ABANDONED = -123
End Enum

' such files can be opened
Public Const KIRVO_FILES_READS As Long = &H1&
' such files can be saved
Public Const KIRVO_FILES_WRITES As Long = &H2&
' none, or to be told by the name
Public Const KIRVO_FILES_UNKNOWN As Long = &H0&
' Windows and OS/2 bitmaps
Public Const KIRVO_FILES_BMP As Long = &H1&
' JPEG
Public Const KIRVO_FILES_JPEG As Long = &H2&
' PNG
Public Const KIRVO_FILES_PNG As Long = &H3&
' Targa
Public Const KIRVO_FILES_TARGA As Long = &H4&
' TIFF
Public Const KIRVO_FILES_TIFF As Long = &H5&
' WebP
Public Const KIRVO_FILES_WEBP As Long = &H6&
' GIF
Public Const KIRVO_FILES_GIF As Long = &H7&
' icons
Public Const KIRVO_FILES_ICON As Long = &H8&
' cursors
Public Const KIRVO_FILES_CURSOR As Long = &H9&
' Q0, with its companion file
Public Const KIRVO_FILES_Q0 As Long = &HA&
' RAW, as RawRead of kirvo.h describes it
Public Const KIRVO_FILES_RAW As Long = &HB&
' Photo CD, with its maker's library
Public Const KIRVO_FILES_PHOTO_CD As Long = &HC&
' HEIC and AVIF, on Windows where the system has a decoder
Public Const KIRVO_FILES_HEIF As Long = &HD&
' cameras' own formats, on Windows where the system has a decoder
Public Const KIRVO_FILES_CAMERA As Long = &HE&
' one above the last
Public Const KIRVO_FILES_FORMATS As Long = &HF&
' "PNG"
Public Const KIRVO_FILES_FORMAT_NAME As Long = &H0&
' "jpg jpeg jpe jfif", the usual one first
Public Const KIRVO_FILES_FORMAT_EXTENSIONS As Long = &H1&
' by what it is read and written: "Kirvo, libjpeg-turbo 2.1.5"
Public Const KIRVO_FILES_FORMAT_CODEC As Long = &H2&
' opening: rows as stored, whatever the EXIF orientation says
Public Const KIRVO_FILES_NO_TURN As Long = &H1&
' opening: a picture with alpha gets 32 bits, alpha on top
Public Const KIRVO_FILES_KEEP_ALPHA As Long = &H2&
' opening: what there is of a damaged or short file
Public Const KIRVO_FILES_KEEP_GOING As Long = &H4&
' opening: claims of any size are believed
Public Const KIRVO_FILES_NO_LIMITS As Long = &H8&
' opening: JPEG by Kirvo's decoder, come what may
Public Const KIRVO_FILES_KIRVO_ONLY As Long = &H10&
' opening: alpha is laid over the options' background
Public Const KIRVO_FILES_BACKGROUND As Long = &H20&
' description: the file's picture has transparency
Public Const KIRVO_FILES_HAS_ALPHA As Long = &H1&
' description: progressive or interlaced
Public Const KIRVO_FILES_PROGRESSIVE As Long = &H2&
' description: the file's coding loses nothing
Public Const KIRVO_FILES_LOSSLESS As Long = &H4&
' description: the file's colours are cyan to black
Public Const KIRVO_FILES_CMYK As Long = &H8&
' description: the file stores its top row first
Public Const KIRVO_FILES_TOP_DOWN As Long = &H10&
' description: latitude and longitude are known
Public Const KIRVO_FILES_HAS_PLACE As Long = &H20&
' description: a JPEG with arithmetic coding
Public Const KIRVO_FILES_ARITHMETIC As Long = &H40&
' there is no such note
Public Const KIRVO_FILES_NOTE_NONE As Long = &H0&
' "ends early: whole to row 320 of 480"
Public Const KIRVO_FILES_NOTE_ENDS_EARLY As Long = &H1&
' a part is damaged, and what is there was taken
Public Const KIRVO_FILES_NOTE_DAMAGED As Long = &H2&
' the headers contradict each other; the pixels are whole
Public Const KIRVO_FILES_NOTE_REPAIRED As Long = &H3&
' "alpha laid over the background"
Public Const KIRVO_FILES_NOTE_ALPHA As Long = &H4&
' "animation: number 1 of 12"
Public Const KIRVO_FILES_NOTE_FRAMES As Long = &H5&
' "16 bits a channel reduced to 8", "CMYK converted"
Public Const KIRVO_FILES_NOTE_REDUCED As Long = &H6&
' "turned upright (orientation 6)"
Public Const KIRVO_FILES_NOTE_TURNED As Long = &H7&
' "decoded by libjpeg-turbo: progressive"
Public Const KIRVO_FILES_NOTE_DECODER As Long = &H8&
' what was taken to save: a level, a quality, an encoder
Public Const KIRVO_FILES_NOTE_ENCODER As Long = &H9&
' "XMP left out: BMP files have no place for it"
Public Const KIRVO_FILES_NOTE_METADATA As Long = &HA&
' anything else
Public Const KIRVO_FILES_NOTE_TEXT As Long = &HB&
' why the call failed, in particular: "photo.jpg: Permission denied", without a full stop
Public Const KIRVO_FILES_TEXT_REASON As Long = &H0&
' the words of a note
Public Const KIRVO_FILES_TEXT_NOTE As Long = &H1&
' "progressive, YCbCr 4:2:0", "V5 header, RLE8"
Public Const KIRVO_FILES_TEXT_VARIANT As Long = &H2&
' by what it was decoded or encoded: "Kirvo"
Public Const KIRVO_FILES_TEXT_DECODER As Long = &H3&
' maker and model
Public Const KIRVO_FILES_TEXT_CAMERA As Long = &H4&
' the lens
Public Const KIRVO_FILES_TEXT_LENS As Long = &H5&
' when it was taken: "2023-05-01 12:30:00"
Public Const KIRVO_FILES_TEXT_DATE As Long = &H6&
' "1/250 s, f/2.8, ISO 100, 35 mm"
Public Const KIRVO_FILES_TEXT_EXPOSURE As Long = &H7&
' "35.68950, 139.69170"
Public Const KIRVO_FILES_TEXT_PLACE As Long = &H8&
' the ICC profile's name
Public Const KIRVO_FILES_TEXT_PROFILE As Long = &H9&
' what made the file
Public Const KIRVO_FILES_TEXT_SOFTWARE As Long = &HA&
' who made the picture
Public Const KIRVO_FILES_TEXT_ARTIST As Long = &HB&
' whose it is
Public Const KIRVO_FILES_TEXT_COPYRIGHT As Long = &HC&
' what it shows
Public Const KIRVO_FILES_TEXT_TITLE As Long = &HD&
' JPEG: the first comment, in one line
Public Const KIRVO_FILES_TEXT_COMMENT As Long = &HE&
' EXIF, a TIFF structure that begins with II or MM
Public Const KIRVO_FILES_DATA_EXIF As Long = &H0&
' the ICC profile
Public Const KIRVO_FILES_DATA_ICC As Long = &H1&
' XMP, UTF-8 text
Public Const KIRVO_FILES_DATA_XMP As Long = &H2&
' JPEG: up to four quantisation tables one after the other, each 64 numbers of 16 bits, row by row
Public Const KIRVO_FILES_DATA_QUANTISERS As Long = &H3&
' the file's palette, 4 bytes an entry: blue, green, red, 0
Public Const KIRVO_FILES_DATA_PALETTE As Long = &H4&
' JPEG: the first comment
Public Const KIRVO_FILES_DATA_COMMENT As Long = &H5&
' saving: without the metadata that the source came with
Public Const KIRVO_FILES_STRIP As Long = &H1&
' saving: not where there is a file already
Public Const KIRVO_FILES_NEW_ONLY As Long = &H2&
' saving: without colour
Public Const KIRVO_FILES_GREY As Long = &H4&
' saving: the top byte of 32 bits is alpha
Public Const KIRVO_FILES_WITH_ALPHA As Long = &H8&
' saving: Targa with run lengths
Public Const KIRVO_FILES_RLE As Long = &H10&
' saving: WebP without loss
Public Const KIRVO_FILES_WEBP_LOSSLESS As Long = &H20&
' saving: JPEG without the source's tables and sampling
Public Const KIRVO_FILES_FRESH As Long = &H40&
' LZW
Public Const KIRVO_FILES_COMPRESSION_USUAL As Long = &H0&
' none
Public Const KIRVO_FILES_COMPRESSION_NONE As Long = &H1&
' LZW
Public Const KIRVO_FILES_COMPRESSION_LZW As Long = &H2&
' Deflate
Public Const KIRVO_FILES_COMPRESSION_DEFLATE As Long = &H3&
' PackBits
Public Const KIRVO_FILES_COMPRESSION_PACKBITS As Long = &H4&
' as its EXIF orientation says
Public Const KIRVO_FILES_TURN_UPRIGHT As Long = &H0&
' a quarter clockwise
Public Const KIRVO_FILES_TURN_90 As Long = &H1&
' a half
Public Const KIRVO_FILES_TURN_180 As Long = &H2&
' a quarter counter-clockwise
Public Const KIRVO_FILES_TURN_270 As Long = &H3&
' top to bottom
Public Const KIRVO_FILES_TURN_FLIP As Long = &H4&
' left to right
Public Const KIRVO_FILES_TURN_MIRROR As Long = &H5&
' nothing is written; the answer is KIRVO_FILES_EDGE
Public Const KIRVO_FILES_EDGES_FAIL As Long = &H0&
' they are cut off; a note says how much
Public Const KIRVO_FILES_EDGES_TRIM As Long = &H1&
' they stay where they are, unturned; a note says so
Public Const KIRVO_FILES_EDGES_KEEP As Long = &H2&

' How to open.
Public Type KirvoFilesOpenOptions
    size As Long ' bytes of this structure
    flags As Long ' KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND, added
    background As Long ' 0x00BBGGRR, with KIRVO_FILES_BACKGROUND; otherwise white
    frame As Long ' which picture of the file, from 1; 0: of an icon the one with the most pixels, then the most colours, of other files the first
End Type

' A file in numbers.
Public Type KirvoFilesDescription
    size As Long ' bytes of this structure, set by the caller
    format As Long ' a #KirvoFilesFormat
    width As Long ' pixels, of the picture as it opens: turned upright
    height As Long ' pixels, likewise
    fileBits As Long ' bits of a pixel in the file
    channels As Long ' 1 grey or palette, 2 grey and alpha, 3 colour, 4 and alpha or CMYK
    colours As Long ' entries of the file's palette; 0 without one
    dibBits As Long ' bits of a pixel of the picture that was opened; 0 of information
    flags As Long ' KIRVO_FILES_HAS_ALPHA to KIRVO_FILES_ARITHMETIC, added
    orientation As Long ' EXIF's 1 to 8; 1 where the file says nothing
    frames As Long ' pictures in the file: frames, pages or images of an icon
    frame As Long ' which one this is, from 1
    quality As Long ' JPEG: quality 1 to 100 that the tables are nearest to
    sampleAcross As Long ' JPEG: luma samples for a chroma sample across: 1, 2 or 4
    sampleDown As Long ' JPEG: likewise down
    fileBytes As Long ' bytes of the file
    wholeRows As Long ' rows that are good, in the order that the file stores them; of a damaged file there may be fewer
    notes As Long ' number of notes
    dpiAcross As Double ' dots an inch across
    dpiDown As Double ' dots an inch down
    latitude As Double ' degrees, north above 0, with KIRVO_FILES_HAS_PLACE
    longitude As Double ' degrees, east above 0, with KIRVO_FILES_HAS_PLACE
End Type

' How to save.
Public Type KirvoFilesSaveOptions
    size As Long ' bytes of this structure
    format As Long ' a #KirvoFilesFormat; 0: by the name's extension
    flags As Long ' KIRVO_FILES_STRIP to KIRVO_FILES_FRESH, added
    quality As Long ' JPEG and WebP: 1 to 100; 0: of a JPEG from a JPEG the source's tables, otherwise 90
    level As Long ' JPEG: quality level 1 to 5 of Kirvo's encoder in place of quality; or 0
    subsample As Long ' JPEG: 1, 2 or 4 as JpgCodSetSubsample; 0: the source's, otherwise 1 from quality 90 or with level 1, 4 below
    sizeLimit As Long ' JPEG and WebP: the best quality (at most the one asked for) whose file has no more than so many bytes; 0: any
    bits As Long ' BMP, PNG, Targa and TIFF: bits of a pixel, 8, 16, 24 or 32 (16 not for PNG and TIFF); from palettes to more and between 16, 24 and 32, nothing else; 0: the image's
    compression As Long ' TIFF: a #KirvoFilesCompression
    reserved As Long ' 0
    dpiAcross As Double ' dots an inch across; 0: the source's
    dpiDown As Double ' dots an inch down; 0: the source's
End Type

#If VBA7 Then

' Status codes of KirvoFiles

' A status in words, in English.
Public Declare PtrSafe Function KirvoFilesStatusText Lib "KirvoFiles.dll" (ByVal status As Long, _
    ByRef text As Any, ByVal capacity As Long) As Long

' Formats

' What can be done with a format in this build, on this system.
Public Declare PtrSafe Function KirvoFilesAbilities Lib "KirvoFiles.dll" ( _
    ByVal format As Long) As Long

' A word about a format.
Public Declare PtrSafe Function KirvoFilesFormatText Lib "KirvoFiles.dll" (ByVal format As Long, _
    ByVal word As Long, ByRef text As Any, ByVal capacity As Long) As Long

' The format that a name tells.
Public Declare PtrSafe Function KirvoFilesFormatOf Lib "KirvoFiles.dll" ( _
    ByVal name As String) As Long

' Open and inform

' Opens a picture, whatever its format.
Public Declare PtrSafe Function KirvoFilesOpen Lib "KirvoFiles.dll" (ByVal name As String, _
    ByRef options As Any, ByRef dib As LongPtr, ByRef file As Any) As Long

' KirvoFilesOpen with a UTF-16 name.
Public Declare PtrSafe Function KirvoFilesOpenW Lib "KirvoFiles.dll" (ByVal name As LongPtr, _
    ByRef options As Any, ByRef dib As LongPtr, ByRef file As Any) As Long

' KirvoFilesOpen of a file that is in memory.
Public Declare PtrSafe Function KirvoFilesOpenMemory Lib "KirvoFiles.dll" (ByRef bytes As Any, _
    ByVal count As Long, ByRef options As Any, ByRef dib As LongPtr, ByRef file As Any) As Long

' What the headers of a file say.
Public Declare PtrSafe Function KirvoFilesInfo Lib "KirvoFiles.dll" (ByVal name As String, _
    ByRef options As Any, ByRef file As LongPtr) As Long

' KirvoFilesInfo with a UTF-16 name.
Public Declare PtrSafe Function KirvoFilesInfoW Lib "KirvoFiles.dll" (ByVal name As LongPtr, _
    ByRef options As Any, ByRef file As LongPtr) As Long

' KirvoFilesInfo of a file that is in memory.
Public Declare PtrSafe Function KirvoFilesInfoMemory Lib "KirvoFiles.dll" (ByRef bytes As Any, _
    ByVal count As Long, ByRef options As Any, ByRef file As LongPtr) As Long

' Frees what is known of a file.
Public Declare PtrSafe Sub KirvoFilesClose Lib "KirvoFiles.dll" (ByVal file As LongPtr)

' What is known of a file

' A file in numbers.
Public Declare PtrSafe Function KirvoFilesDescribe Lib "KirvoFiles.dll" (ByVal file As LongPtr, _
    ByRef description As KirvoFilesDescription) As Long

' What a note is about.
Public Declare PtrSafe Function KirvoFilesNote Lib "KirvoFiles.dll" (ByVal file As LongPtr, _
    ByVal index As Long) As Long

' A text about a file.
Public Declare PtrSafe Function KirvoFilesText Lib "KirvoFiles.dll" (ByVal file As LongPtr, _
    ByVal kind As Long, ByVal index As Long, ByRef text As Any, ByVal capacity As Long) As Long

' Bytes that come with a file.
Public Declare PtrSafe Function KirvoFilesData Lib "KirvoFiles.dll" (ByVal file As LongPtr, _
    ByVal kind As Long, ByRef bytes As Any, ByVal capacity As Long) As Long

' Gives a file's metadata other bytes, to be saved with a picture, also where the rest of its
' metadata is not (KIRVO_FILES_STRIP).
Public Declare PtrSafe Function KirvoFilesSetData Lib "KirvoFiles.dll" (ByRef file As LongPtr, _
    ByVal kind As Long, ByRef bytes As Any, ByVal count As Long) As Long

' Save

' Saves a picture as a file, complete or not at all.
Public Declare PtrSafe Function KirvoFilesSave Lib "KirvoFiles.dll" (ByVal name As String, _
    ByVal dib As LongPtr, ByVal source As LongPtr, ByRef options As Any, _
    ByRef file As Any) As Long

' KirvoFilesSave with a UTF-16 name.
Public Declare PtrSafe Function KirvoFilesSaveW Lib "KirvoFiles.dll" (ByVal name As LongPtr, _
    ByVal dib As LongPtr, ByVal source As LongPtr, ByRef options As Any, _
    ByRef file As Any) As Long

' Saves a picture into a block of memory.
Public Declare PtrSafe Function KirvoFilesSaveMemory Lib "KirvoFiles.dll" (ByVal dib As LongPtr, _
    ByVal source As LongPtr, ByRef options As Any, ByRef block As LongPtr, ByRef count As Long, _
    ByRef file As Any) As Long

' Turn a JPEG without loss

' Turns a JPEG without loss.
Public Declare PtrSafe Function KirvoFilesTurn Lib "KirvoFiles.dll" (ByVal source As String, _
    ByVal target As String, ByVal turning As Long, ByVal edges As Long, ByVal flags As Long, _
    ByRef file As Any) As Long

' KirvoFilesTurn with UTF-16 names.
Public Declare PtrSafe Function KirvoFilesTurnW Lib "KirvoFiles.dll" (ByVal source As LongPtr, _
    ByVal target As LongPtr, ByVal turning As Long, ByVal edges As Long, ByVal flags As Long, _
    ByRef file As Any) As Long
#Else

' Status codes of KirvoFiles

' A status in words, in English.
Public Declare Function KirvoFilesStatusText Lib "KirvoFiles.dll" (ByVal status As Long, _
    ByRef text As Any, ByVal capacity As Long) As Long

' Formats

' What can be done with a format in this build, on this system.
Public Declare Function KirvoFilesAbilities Lib "KirvoFiles.dll" (ByVal format As Long) As Long

' A word about a format.
Public Declare Function KirvoFilesFormatText Lib "KirvoFiles.dll" (ByVal format As Long, _
    ByVal word As Long, ByRef text As Any, ByVal capacity As Long) As Long

' The format that a name tells.
Public Declare Function KirvoFilesFormatOf Lib "KirvoFiles.dll" (ByVal name As String) As Long

' Open and inform

' Opens a picture, whatever its format.
Public Declare Function KirvoFilesOpen Lib "KirvoFiles.dll" (ByVal name As String, _
    ByRef options As Any, ByRef dib As Long, ByRef file As Any) As Long

' KirvoFilesOpen with a UTF-16 name.
Public Declare Function KirvoFilesOpenW Lib "KirvoFiles.dll" (ByVal name As Long, _
    ByRef options As Any, ByRef dib As Long, ByRef file As Any) As Long

' KirvoFilesOpen of a file that is in memory.
Public Declare Function KirvoFilesOpenMemory Lib "KirvoFiles.dll" (ByRef bytes As Any, _
    ByVal count As Long, ByRef options As Any, ByRef dib As Long, ByRef file As Any) As Long

' What the headers of a file say.
Public Declare Function KirvoFilesInfo Lib "KirvoFiles.dll" (ByVal name As String, _
    ByRef options As Any, ByRef file As Long) As Long

' KirvoFilesInfo with a UTF-16 name.
Public Declare Function KirvoFilesInfoW Lib "KirvoFiles.dll" (ByVal name As Long, _
    ByRef options As Any, ByRef file As Long) As Long

' KirvoFilesInfo of a file that is in memory.
Public Declare Function KirvoFilesInfoMemory Lib "KirvoFiles.dll" (ByRef bytes As Any, _
    ByVal count As Long, ByRef options As Any, ByRef file As Long) As Long

' Frees what is known of a file.
Public Declare Sub KirvoFilesClose Lib "KirvoFiles.dll" (ByVal file As Long)

' What is known of a file

' A file in numbers.
Public Declare Function KirvoFilesDescribe Lib "KirvoFiles.dll" (ByVal file As Long, _
    ByRef description As KirvoFilesDescription) As Long

' What a note is about.
Public Declare Function KirvoFilesNote Lib "KirvoFiles.dll" (ByVal file As Long, _
    ByVal index As Long) As Long

' A text about a file.
Public Declare Function KirvoFilesText Lib "KirvoFiles.dll" (ByVal file As Long, _
    ByVal kind As Long, ByVal index As Long, ByRef text As Any, ByVal capacity As Long) As Long

' Bytes that come with a file.
Public Declare Function KirvoFilesData Lib "KirvoFiles.dll" (ByVal file As Long, _
    ByVal kind As Long, ByRef bytes As Any, ByVal capacity As Long) As Long

' Gives a file's metadata other bytes, to be saved with a picture, also where the rest of its
' metadata is not (KIRVO_FILES_STRIP).
Public Declare Function KirvoFilesSetData Lib "KirvoFiles.dll" (ByRef file As Long, _
    ByVal kind As Long, ByRef bytes As Any, ByVal count As Long) As Long

' Save

' Saves a picture as a file, complete or not at all.
Public Declare Function KirvoFilesSave Lib "KirvoFiles.dll" (ByVal name As String, _
    ByVal dib As Long, ByVal source As Long, ByRef options As Any, ByRef file As Any) As Long

' KirvoFilesSave with a UTF-16 name.
Public Declare Function KirvoFilesSaveW Lib "KirvoFiles.dll" (ByVal name As Long, _
    ByVal dib As Long, ByVal source As Long, ByRef options As Any, ByRef file As Any) As Long

' Saves a picture into a block of memory.
Public Declare Function KirvoFilesSaveMemory Lib "KirvoFiles.dll" (ByVal dib As Long, _
    ByVal source As Long, ByRef options As Any, ByRef block As Long, ByRef count As Long, _
    ByRef file As Any) As Long

' Turn a JPEG without loss

' Turns a JPEG without loss.
Public Declare Function KirvoFilesTurn Lib "KirvoFiles.dll" (ByVal source As String, _
    ByVal target As String, ByVal turning As Long, ByVal edges As Long, ByVal flags As Long, _
    ByRef file As Any) As Long

' KirvoFilesTurn with UTF-16 names.
Public Declare Function KirvoFilesTurnW Lib "KirvoFiles.dll" (ByVal source As Long, _
    ByVal target As Long, ByVal turning As Long, ByVal edges As Long, ByVal flags As Long, _
    ByRef file As Any) As Long
#End If

' The name and the meaning of a status.
Public Function KirvoFilesMessage(ByVal status As Long) As String
    Select Case status
    Case KIRVO_FILES_OK
        KirvoFilesMessage = "KIRVO_FILES_OK: Success."
    Case KIRVO_FILES_BAD_PARAMETER
        KirvoFilesMessage = "KIRVO_FILES_BAD_PARAMETER: A null pointer, a value out of its range, a structure whose size is none of this library's, or an image whose block is smaller than its header says."
    Case KIRVO_FILES_NO_MEMORY
        KirvoFilesMessage = "KIRVO_FILES_NO_MEMORY: Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes."
    Case KIRVO_FILES_MISSING
        KirvoFilesMessage = "KIRVO_FILES_MISSING: There is no file or folder of that name."
    Case KIRVO_FILES_IS_FOLDER
        KirvoFilesMessage = "KIRVO_FILES_IS_FOLDER: The name is that of a folder."
    Case KIRVO_FILES_NO_PERMISSION
        KirvoFilesMessage = "KIRVO_FILES_NO_PERMISSION: The system does not permit it."
    Case KIRVO_FILES_CANNOT_OPEN
        KirvoFilesMessage = "KIRVO_FILES_CANNOT_OPEN: The file cannot be opened for another reason; the reason's text has the system's words."
    Case KIRVO_FILES_READ_ERROR
        KirvoFilesMessage = "KIRVO_FILES_READ_ERROR: The system failed to read what is in the file."
    Case KIRVO_FILES_CANNOT_WRITE
        KirvoFilesMessage = "KIRVO_FILES_CANNOT_WRITE: The file cannot be made, written or put into its place."
    Case KIRVO_FILES_DISK_FULL
        KirvoFilesMessage = "KIRVO_FILES_DISK_FULL: The disk is full, or the user's share of it."
    Case KIRVO_FILES_EXISTS
        KirvoFilesMessage = "KIRVO_FILES_EXISTS: There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for."
    Case KIRVO_FILES_EMPTY
        KirvoFilesMessage = "KIRVO_FILES_EMPTY: The file is empty: it has no bytes at all."
    Case KIRVO_FILES_NOT_A_PICTURE
        KirvoFilesMessage = "KIRVO_FILES_NOT_A_PICTURE: The content is no picture of a known format."
    Case KIRVO_FILES_ENDS_EARLY
        KirvoFilesMessage = "KIRVO_FILES_ENDS_EARLY: The picture ends before all of its rows are there."
    Case KIRVO_FILES_DAMAGED
        KirvoFilesMessage = "KIRVO_FILES_DAMAGED: The picture is damaged."
    Case KIRVO_FILES_UNSUPPORTED
        KirvoFilesMessage = "KIRVO_FILES_UNSUPPORTED: The format is known, but not this variant of it."
    Case KIRVO_FILES_NO_CODEC
        KirvoFilesMessage = "KIRVO_FILES_NO_CODEC: The format is known, but this build or this system has no decoder or encoder for it."
    Case KIRVO_FILES_CLAIM_TOO_LARGE
        KirvoFilesMessage = "KIRVO_FILES_CLAIM_TOO_LARGE: The file claims a size out of all proportion to its bytes; see KIRVO_FILES_NO_LIMITS."
    Case KIRVO_FILES_NOT_WRITTEN
        KirvoFilesMessage = "KIRVO_FILES_NOT_WRITTEN: The format is not one that is written, or the name does not tell a format."
    Case KIRVO_FILES_TOO_LARGE
        KirvoFilesMessage = "KIRVO_FILES_TOO_LARGE: The format has no room for a picture this large; or a file of 2 GB or more."
    Case KIRVO_FILES_SIZE_LIMIT
        KirvoFilesMessage = "KIRVO_FILES_SIZE_LIMIT: The picture does not become so small as was asked for."
    Case KIRVO_FILES_EDGE
        KirvoFilesMessage = "KIRVO_FILES_EDGE: A turn without loss would cut or keep an edge, and neither was allowed."
    Case KIRVO_FILES_NO_FRAME
        KirvoFilesMessage = "KIRVO_FILES_NO_FRAME: A frame was asked for that the file does not have."
    Case KIRVO_FILES_ABANDONED
        KirvoFilesMessage = "KIRVO_FILES_ABANDONED: The caller has abandoned the operation through a progress handler of kirvo.h."
    Case Else
        KirvoFilesMessage = "status " & status
    End Select
End Function

' Raises an error unless the status is KIRVO_FILES_OK.
Public Sub KirvoFilesCheck(ByVal status As Long)
    If status <> KIRVO_FILES_OK Then
        Err.Raise vbObjectError + 512 - status, "KirvoFiles", KirvoFilesMessage(status)
    End If
End Sub
