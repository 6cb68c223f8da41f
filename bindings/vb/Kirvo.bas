Attribute VB_Name = "Kirvo"
' Kirvo: image processing on packed DIBs, for Visual Basic 6 and VBA.
'
' The program needs Kirvo.dll in its folder or on the path: the 32-bit one for Visual Basic 6 and
' 32-bit Office, the 64-bit one for 64-bit Office. Images are handles (Long, or LongPtr in VBA 7),
' which the program frees with GlobalFree. Give an array by its first element, and ByVal 0& where
' nothing is wanted and the parameter is As Any (in 64-bit Office ByVal CLngPtr(0)). Numbers without
' sign arrive as Long: above 2147483647 they look negative. Integers of 16 bits do so above 32767:
' And &HFFFF& mends that. What every function does, its ranges and status codes are written in
' kirvo.h, under the same names.
'
' Written by script/bindings from interface/kirvo.txt: changes belong there.
Option Explicit

' What a call answers: 0 for success, below 0 for an error.
Public Enum KirvoStatus
    ' Success.
    KIRVO_OK = 0
    ' A rectangle that is empty, negative or outside the image, a value out of its range, or a block
    ' of memory smaller than its header says.
    KIRVO_BAD_PARAMETER = -1
    ' Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes,
    ' or a JPEG stream has outgrown its block.
    KIRVO_NO_MEMORY = -2
    ' Null handle, null data, or a handle that is freed or invented.
    KIRVO_NULL_HANDLE = -3
    ' A file could not be opened or created.
    KIRVO_CANNOT_OPEN = -4
    ' A read error, or a file that is too short.
    KIRVO_READ_ERROR = -5
    ' A write error: the disk is full or was taken away.
    KIRVO_WRITE_ERROR = -6
    ' JPEG: no start of image.
    KIRVO_JPEG_NO_SOI = -10
    ' JPEG: a marker that does not belong into the entropy-coded data.
    KIRVO_JPEG_MARKER = -11
    ' JPEG: end of image before the first scan.
    KIRVO_JPEG_EARLY_EOI = -12
    ' JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer.
    KIRVO_JPEG_HEADER = -13
    ' JPEG: a Huffman code that does not exist, or a table that was not defined.
    KIRVO_JPEG_HUFFMAN = -14
    ' JPEG encoder: a coefficient that has no code.
    KIRVO_JPEG_CATEGORY = -15
    ' The caller has abandoned a piecewise encode or decode.
    KIRVO_ABANDONED = -16
    ' Another encode or decode is in progress.
    KIRVO_BUSY = -17
    ' JPEG: a frame type other than baseline and progressive Huffman coding.
    KIRVO_JPEG_FRAME = -19
    ' Not a BMP file, or a depth that BMP files do not have.
    KIRVO_NOT_BMP = -20
    ' The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them.
    KIRVO_NEEDS_8 = -21
    ' The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them.
    KIRVO_NEEDS_24 = -22
    ' Not an uncompressed 24-bit Targa file.
    KIRVO_NOT_TARGA = -25
    ' The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for
    ' it.
    KIRVO_Q0_SIZE = -26
    ' Not a RAW file, or one too short for its size.
    KIRVO_NOT_RAW = -27
    ' A RAW file with a palette, which the reader does not offer.
    KIRVO_RAW_PALETTE = -28
    ' More than 256 different colours (239 and the system colours in mode 0).
    KIRVO_MORE_THAN_256 = -30
    ' More than 16 different colours, or in mode 0 others than the system colours.
    KIRVO_MORE_THAN_16 = -31
    ' Not an icon or cursor file.
    KIRVO_NOT_ICON = -35
    ' The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.
    KIRVO_NEEDS_8_16_24_32 = -40
    ' The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer.
    KIRVO_NEEDS_16_24_32 = -41
    ' The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24.
    KIRVO_NEEDS_24_32 = -42
    ' The image must have 8, 24 or 32 bits.
    KIRVO_NEEDS_8_24_32 = -43
    ' The image must have 16 or 32 bits.
    KIRVO_NEEDS_16_32 = -44
    ' The image must have 1, 4 or 8 bits.
    KIRVO_NEEDS_1_4_8 = -45
    ' The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24.
    KIRVO_NEEDS_8_24 = -46
    ' The image must have 16 or 24 bits.
    KIRVO_NEEDS_16_24 = -47
End Enum

' GlobalAlloc: the block is known by a handle
Public Const GMEM_MOVEABLE As Long = &H2&
' GlobalAlloc: the block is zero
Public Const GMEM_ZEROINIT As Long = &H40&
' GlobalAlloc: both
Public Const GHND As Long = &H42&
' biCompression: plain pixels
Public Const BI_RGB As Long = &H0&
' biCompression: plain pixels under three masks
Public Const BI_BITFIELDS As Long = &H3&
' the message that carries progress
Public Const WM_COMMAND As Long = &H111&
' GetSystemMetrics: height of a menu bar
Public Const SM_CYMENU As Long = &HF&
' GetSystemMetrics: width of a window's frame
Public Const SM_CXFRAME As Long = &H20&
' SetWindowPos: the position stays
Public Const SWP_NOMOVE As Long = &H2&
' SetWindowPos: the order of windows stays
Public Const SWP_NOZORDER As Long = &H4&
' version of this header: 1.0.4.2, as GetVerKirvoDll tells it
Public Const KIRVO_VERSION As Long = &H1000402&

' Header of a device-independent bitmap, as in Win32.
Public Type BITMAPINFOHEADER
    biSize As Long ' size of this header in bytes: 40
    biWidth As Long ' width in pixels
    biHeight As Long ' height in pixels; positive: rows are stored bottom-up
    biPlanes As Integer ' 1
    biBitCount As Integer ' 1, 4, 8, 16, 24 or 32
    biCompression As Long ' BI_RGB or BI_BITFIELDS
    biSizeImage As Long ' bytes of all rows
    biXPelsPerMeter As Long ' not interpreted
    biYPelsPerMeter As Long ' not interpreted
    biClrUsed As Long ' number of colour-table entries, or 0 for the depth's full number
    biClrImportant As Long ' not interpreted
End Type

' One entry of a colour table.
Public Type RGBQUAD
    rgbBlue As Byte ' blue
    rgbGreen As Byte ' green
    rgbRed As Byte ' red
    rgbReserved As Byte ' not interpreted
End Type

' One entry of a logical palette.
Public Type PALETTEENTRY
    peRed As Byte ' red
    peGreen As Byte ' green
    peBlue As Byte ' blue
    peFlags As Byte ' 0 or a PC_ flag
End Type

' A rectangle by its edges.
Public Type RECT
    left As Long ' left edge
    top As Long ' top edge
    right As Long ' one past the right edge
    bottom As Long ' one past the bottom edge
End Type

' What the header of a JPEG stream says.
Public Type JpgDecSpec
    width As Long ' pixels
    height As Long ' pixels
    components As Long ' 1 (grey) or 3
    lumaBlocks As Long ' luma blocks in an MCU: 1, 2 or 4
    restartInterval As Long ' MCUs between restart markers, 0 without them
    commentCount As Long ' comments before the image data that are not empty, at most 5
    fileSize As Long ' bytes
End Type

#If VBA7 Then

' Names of Windows

' Allocates a movable block.
Public Declare PtrSafe Function GlobalAlloc Lib "kernel32" (ByVal flags As Long, _
    ByVal bytes As LongPtr) As LongPtr

' Locks a block.
Public Declare PtrSafe Function GlobalLock Lib "kernel32" (ByVal block As LongPtr) As LongPtr

' Undoes one GlobalLock.
Public Declare PtrSafe Function GlobalUnlock Lib "kernel32" (ByVal block As LongPtr) As Long

' Frees a block, locked or not.
Public Declare PtrSafe Function GlobalFree Lib "kernel32" (ByVal block As LongPtr) As LongPtr

' Size of a block.
Public Declare PtrSafe Function GlobalSize Lib "kernel32" (ByVal block As LongPtr) As LongPtr

' Reads entries of a logical palette.
Public Declare PtrSafe Function GetPaletteEntries Lib "gdi32" (ByVal palette As LongPtr, _
    ByVal first As Long, ByVal count As Long, ByRef entries As Any) As Long

' Deletes a logical palette.
Public Declare PtrSafe Function DeleteObject Lib "gdi32" (ByVal object_ As LongPtr) As Long

' Images

' Version of the library.
Public Declare PtrSafe Function GetVerKirvoDll Lib "Kirvo.dll" () As Long

' Registers for progress messages of the next long operation.
Public Declare PtrSafe Function KirvoSetProcess Lib "Kirvo.dll" (ByVal window As LongPtr, _
    ByVal command As Long, ByVal enable As Long) As Long

' Number of colour-table entries of an image.
Public Declare PtrSafe Function DibNumColors Lib "Kirvo.dll" (ByVal header As LongPtr) As Integer

' Size of the colour part of an image.
Public Declare PtrSafe Function PaletteSize Lib "Kirvo.dll" (ByVal header As LongPtr) As Integer

' Depth of an image.
Public Declare PtrSafe Function DibQueryBitCount Lib "Kirvo.dll" (ByVal dib As LongPtr) As Long

' Sets one colour-table entry.
Public Declare PtrSafe Function XPaletteQuad Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal index As Long, ByVal colour As Long) As Long

' Makes a logical palette of the library's fixed 256 colours.
Public Declare PtrSafe Function KirvoCreatePalette Lib "Kirvo.dll" () As LongPtr

' Allocates a new packed DIB.
Public Declare PtrSafe Function DibMemAllocEx Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long) As LongPtr

' BMP files

' Reads a BMP file of any depth.
Public Declare PtrSafe Function DibReadEx Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef bits As Long, _
    ByRef status As Long) As LongPtr

' Reads a 24-bit BMP file.
Public Declare PtrSafe Function Dib24Read Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef status As Long) As LongPtr

' Writes an image, or a rectangle of it, as a BMP file.
Public Declare PtrSafe Function DibWriteEx Lib "Kirvo.dll" (ByVal name As String, _
    ByVal dib As LongPtr, ByVal x As Long, ByVal y As Long, ByVal width As Long, _
    ByVal height As Long) As Long

' Writes a 24-bit image, or a rectangle of it, as a BMP file.
Public Declare PtrSafe Function Dib24Write Lib "Kirvo.dll" (ByVal name As String, _
    ByVal dib As LongPtr, ByVal x As Long, ByVal y As Long, ByVal width As Long, _
    ByVal height As Long) As Long

' JPEG decoder

' Begins a decode with the first bytes of a stream.
Public Declare PtrSafe Function JpgDecFirst Lib "Kirvo.dll" (ByVal data As LongPtr, _
    ByVal size As Long, ByRef image As LongPtr) As Long

' Goes on with a decode that JpgDecFirst has begun.
Public Declare PtrSafe Function JpgDecNext Lib "Kirvo.dll" (ByVal data As LongPtr, _
    ByVal size As Long, ByVal final As Long, ByRef image As LongPtr) As Long

' Decodes a file.
Public Declare PtrSafe Function JpgDecMainEx Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef error_ As Long) As LongPtr

' Decodes a stream that is in memory.
Public Declare PtrSafe Function JpgDecMainHGLOBAL Lib "Kirvo.dll" (ByVal data As LongPtr, _
    ByVal size As Long, ByRef width As Long, ByRef height As Long, _
    ByRef error_ As Long) As LongPtr

' Does nothing.
Public Declare PtrSafe Sub JpgDecSetNoblock Lib "Kirvo.dll" (ByVal a As Long, ByVal b As Long, _
    ByVal c As Long)

' Reads the header of a file up to its image data.
Public Declare PtrSafe Function JpgDecGetSpecEx Lib "Kirvo.dll" (ByVal name As String, _
    ByRef spec As JpgDecSpec) As Long

' The first four values of JpgDecGetSpecEx.
Public Declare PtrSafe Function JpgDecGetSpec Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef components As Long, _
    ByRef lumaBlocks As Long) As Long

' Switches the storing and the retrieval of comments on or off.
Public Declare PtrSafe Sub JpgDecGetCommentEnable Lib "Kirvo.dll" (ByVal enable As Long)

' Counts the comments of the last stream.
Public Declare PtrSafe Function JpgDecCommentCounts Lib "Kirvo.dll" () As Long

' A stored comment.
Public Declare PtrSafe Function JpgDecGetComment Lib "Kirvo.dll" (ByVal index As Long) As LongPtr

' Frees the stored comments.
Public Declare PtrSafe Sub JpgDecCommentFree Lib "Kirvo.dll" ()

' Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64 values
' each, row by row.
Public Declare PtrSafe Function JpgDecGetQtable Lib "Kirvo.dll" (ByRef luma As Integer, _
    ByRef chroma As Integer) As Long

' One quantisation table of the last decode.
Public Declare PtrSafe Function JpgDecGetQtableEx Lib "Kirvo.dll" (ByVal number As Long, _
    ByRef table As Integer) As Long

' The marker that ended the last decode with KIRVO_JPEG_MARKER.
Public Declare PtrSafe Function JpgDecGetLastUexMarker Lib "Kirvo.dll" ( _
    ByRef position As Long) As Integer

' JPEG encoder

' Sizes of the most recent encode.
Public Declare PtrSafe Function JpgCodGetStatus Lib "Kirvo.dll" (ByRef source_bytes As Long, _
    ByRef output_bytes As Long) As Long

' Starts to encode a rectangle in colour and writes the headers.
Public Declare PtrSafe Function JpgCodFirst Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal mcus_per_call As Long, ByRef status As Long) As LongPtr

' Goes on with the encode that JpgCodFirst has started.
Public Declare PtrSafe Function JpgCodNext Lib "Kirvo.dll" (ByVal control As Long, _
    ByRef stream_bytes As Long) As Long

' Encodes a rectangle in colour into a file.
Public Declare PtrSafe Function JpgCodMainEx Lib "Kirvo.dll" (ByVal path As String, _
    ByVal dib As LongPtr, ByVal left As Long, ByVal top As Long, ByVal width As Long, _
    ByVal height As Long, ByVal unused1 As Long, ByVal unused2 As Long) As Long

' Encodes a rectangle in colour into a memory block.
Public Declare PtrSafe Function JpgCodMainHGLOBAL Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByRef stream_bytes As Long, ByRef status As Long) As LongPtr

' Starts to encode a rectangle as a grey stream.
Public Declare PtrSafe Function JpgCodFirst_M Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal grey_mode As Long, ByVal mcus_per_call As Long, ByRef status As Long) As LongPtr

' Goes on with the encode that JpgCodFirst_M has started.
Public Declare PtrSafe Function JpgCodNext_M Lib "Kirvo.dll" (ByVal control As Long, _
    ByRef stream_bytes As Long) As Long

' Encodes a rectangle as a grey stream into a file.
Public Declare PtrSafe Function JpgCodMainEx_M Lib "Kirvo.dll" (ByVal path As String, _
    ByVal dib As LongPtr, ByVal left As Long, ByVal top As Long, ByVal width As Long, _
    ByVal height As Long, ByVal grey_mode As Long) As Long

' Encodes a rectangle as a grey stream into a memory block.
Public Declare PtrSafe Function JpgCodMainHGLOBAL_M Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal grey_mode As Long, ByRef stream_bytes As Long, ByRef status As Long) As LongPtr

' JPEG encoder settings

' Sets how colour streams sample chroma.
Public Declare PtrSafe Function JpgCodSetSubsample Lib "Kirvo.dll" (ByVal mode As Long) As Long

' Selects one of the quality levels 2 to 5.
Public Declare PtrSafe Function JpgCodSetQ Lib "Kirvo.dll" (ByVal q As Long) As Long

' Selects a quality level.
Public Declare PtrSafe Function JpgCodSetQEx Lib "Kirvo.dll" (ByVal level As Long) As Long

' Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx).
Public Declare PtrSafe Function JpgCodSetQtable Lib "Kirvo.dll" (ByRef luminance As Integer, _
    ByRef chrominance As Integer) As Long

' As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0.
Public Declare PtrSafe Function JpgCodSetQtableEx Lib "Kirvo.dll" (ByRef luminance As Integer, _
    ByRef chrominance As Integer, ByVal count As Long) As Long

' Sets a comment for the next stream only.
Public Declare PtrSafe Sub JpgCodSetComment Lib "Kirvo.dll" (ByRef text As Any, _
    ByVal length As Long)

' Targa, Q0, RAW, Photo CD and icon files

' Reads an uncompressed 24-bit Targa file (image type 2), with either origin.
Public Declare PtrSafe Function Targa24Read Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef status As Long) As LongPtr

' Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with its origin at the
' bottom left.
Public Declare PtrSafe Function Targa24Write Lib "Kirvo.dll" (ByVal name As String, _
    ByVal dib As LongPtr, ByVal x As Long, ByVal y As Long, ByVal width As Long, _
    ByVal height As Long) As Long

' Reads a Q0 file.
Public Declare PtrSafe Function Q0Read Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef bits As Long, ByRef status As Long) As LongPtr

' Reads a RAW file.
Public Declare PtrSafe Function RawRead Lib "Kirvo.dll" (ByVal name As String, _
    ByRef width As Long, ByRef height As Long, ByRef bits As Long, _
    ByRef status As Long) As LongPtr

' Reads a Photo CD image with the Photo CD access library, which is loaded for the length of the
' call by the name PCDLIB32.DLL and the system's search rules.
Public Declare PtrSafe Function PcdRead Lib "Kirvo.dll" (ByVal name As String, _
    ByVal resolution As Long, ByVal progress As LongPtr, ByRef width As Long, _
    ByRef height As Long, ByRef status As Long) As LongPtr

' Lists the images of an icon or cursor file by its directory.
Public Declare PtrSafe Function IcoGetInfo Lib "Kirvo.dll" (ByVal name As String, _
    ByRef records As Any, ByVal size As Long) As Long

' Lists the images of an icon or cursor file by their own headers.
Public Declare PtrSafe Function IcoGetInfoEx Lib "Kirvo.dll" (ByVal name As String, _
    ByRef records As Any, ByVal size As Long) As Long

' Reads one image of an icon or cursor file, and its transparency mask.
Public Declare PtrSafe Function IcoGetData Lib "Kirvo.dll" (ByVal name As String, _
    ByVal index As Long, ByRef width As Long, ByRef height As Long, ByRef bits As Long, _
    ByRef status As Long, ByRef mask As Any) As LongPtr

' Copy and compose

' Copies a rectangle into an image that was made of exactly its size.
Public Declare PtrSafe Function Dib24Copy Lib "Kirvo.dll" (ByVal to_ As LongPtr, _
    ByVal from As LongPtr, ByVal left As Long, ByVal top As Long, ByVal width As Long, _
    ByVal height As Long) As Long

' Copies a rectangle between two images of any sizes and one depth.
Public Declare PtrSafe Function Dib24CopyEx Lib "Kirvo.dll" (ByVal to_ As LongPtr, _
    ByVal to_left As Long, ByVal to_top As Long, ByVal from As LongPtr, ByVal from_left As Long, _
    ByVal from_top As Long, ByVal width As Long, ByVal height As Long) As Long

' Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
Public Declare PtrSafe Function Dib24DupEx Lib "Kirvo.dll" (ByVal from As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByRef status As Long) As LongPtr

' Composes a rectangle of one image onto one of the same size of another.
Public Declare PtrSafe Function Dib24Add Lib "Kirvo.dll" (ByVal to_ As LongPtr, _
    ByVal to_left As Long, ByVal to_top As Long, ByVal from As LongPtr, ByVal from_left As Long, _
    ByVal from_top As Long, ByVal width As Long, ByVal height As Long, ByVal mode As Long) As Long

' Sets the key colour of Dib24Add for the whole process.
Public Declare PtrSafe Sub SetKeyColorDib24Add Lib "Kirvo.dll" (ByVal colour As Long)

' Flip, mirror, turn

' Turns a rectangle upside down, in place.
Public Declare PtrSafe Function Dib24Flip Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Exchanges left and right in a rectangle, in place.
Public Declare PtrSafe Function Dib24Mirror Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Turns a rectangle by 180 degrees, in place.
Public Declare PtrSafe Function Dib24FlipMirror Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
' colour table or masks.
Public Declare PtrSafe Function Dib24Rotate Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal direction As Long, ByRef status As Long) As LongPtr

' Zoom

' Resizes a rectangle into a new image by taking the nearest pixel.
Public Declare PtrSafe Function Dib24ZoomEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal new_width As Long, ByVal new_height As Long, ByRef status As Long) As LongPtr

' Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with 32-bit
' coordinates, or by averaging.
Public Declare PtrSafe Function Dib24ZoomEx2 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal new_width As Long, ByVal new_height As Long, ByRef status As Long, _
    ByVal smooth As Long) As LongPtr

' Tone

' Inverts a rectangle in place.
Public Declare PtrSafe Function Dib24Negative Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' Exchanges the channels of a rectangle in place.
Public Declare PtrSafe Function Dib24RGBChange Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal mode As Long, ByVal x As Long, ByVal y As Long, ByVal width As Long, _
    ByVal height As Long) As Long

' Brightens or darkens.
Public Declare PtrSafe Function Dib24Brightness Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal level As Long, ByRef status As Long) As LongPtr

' Raises or lowers the contrast around mid-grey.
Public Declare PtrSafe Function Dib24Contrast Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal level As Long, ByRef status As Long) As LongPtr

' Turns a rectangle to grey.
Public Declare PtrSafe Function Dib24Monochrome Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef status As Long) As LongPtr

' Halves the intensity.
Public Declare PtrSafe Function Dib24HalfTone Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef status As Long) As LongPtr

' Multiplies all channels by a fraction.
Public Declare PtrSafe Function Dib24ToneCtrl Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal numerator As Long, ByVal denominator As Long, ByRef status As Long) As LongPtr

' Multiplies each channel by its factor.
Public Declare PtrSafe Function Dib24ToneCtrlEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal red As Double, ByVal green As Double, ByVal blue As Double, _
    ByRef status As Long) As LongPtr

' Corrects the gamma.
Public Declare PtrSafe Function Dib24Gamma Lib "Kirvo.dll" (ByVal dib As LongPtr, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal gamma As Double, _
    ByRef status As Long) As LongPtr

' Corrects the gamma of each channel, as Dib24Gamma does.
Public Declare PtrSafe Function DibGammaEx Lib "Kirvo.dll" (ByVal dib As LongPtr, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal red As Double, _
    ByVal green As Double, ByVal blue As Double, ByRef status As Long) As LongPtr

' Separates the channels.
Public Declare PtrSafe Function Dib24Separate Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef red As Any, _
    ByRef green As Any, ByRef blue As Any) As Long

' Maps every channel through a table.
Public Declare PtrSafe Function DibColorMapEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef table As Byte, ByRef status As Long) As LongPtr

' Hue and HSV

' Converts a colour to hue, saturation and value.
Public Declare PtrSafe Sub RGB2HSV Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long, ByRef hue As Long, ByRef saturation As Long, ByRef value As Long)

' Saturation and value of a colour.
Public Declare PtrSafe Sub RGB2SV Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long, ByRef saturation As Long, ByRef value As Long)

' Value of a colour.
Public Declare PtrSafe Function RGB2V Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long) As Long

' Converts hue, saturation and value to a colour.
Public Declare PtrSafe Sub HSV2RGB Lib "Kirvo.dll" (ByVal hue As Long, ByVal saturation As Long, _
    ByVal value As Long, ByRef red As Long, ByRef green As Long, ByRef blue As Long)

' Changes the hue of a whole image in place.
Public Declare PtrSafe Function DibModifyHue Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal mode As Long, ByVal value As Long) As Long

' Makes a copy of a rectangle with its hue changed.
Public Declare PtrSafe Function DibModifyHueEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal mode As Long, ByVal value As Long, ByRef status As Long) As LongPtr

' Filters

' Blurs a rectangle with a fixed 3 x 3 kernel.
Public Declare PtrSafe Function Dib24Gausian Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef status As Long) As LongPtr

' Sets the kernel of DibFilter3x3, for the life of the process.
Public Declare PtrSafe Sub SetFilter3x3 Lib "Kirvo.dll" (ByVal k0 As Long, ByVal k1 As Long, _
    ByVal k2 As Long, ByVal k3 As Long, ByVal k4 As Long, ByVal k5 As Long, ByVal k6 As Long, _
    ByVal k7 As Long, ByVal k8 As Long, ByVal divisor As Long)

' Filters a rectangle with the kernel of SetFilter3x3.
Public Declare PtrSafe Function DibFilter3x3 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef status As Long) As LongPtr

' Sets the mask of Dib24Mix3X3, for the life of the process.
Public Declare PtrSafe Sub Dib24Mix3X3SetMask Lib "Kirvo.dll" (ByRef weights As Long)

' Sets the mask of Dib24Mix5X5, for the life of the process.
Public Declare PtrSafe Sub Dib24Mix5X5SetMask Lib "Kirvo.dll" (ByRef weights As Long)

' Draws the 3 x 3 neighbours of one pixel towards its colour, in place.
Public Declare PtrSafe Function Dib24Mix3X3 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long) As Long

' Draws the 5 x 5 neighbours of one pixel towards its colour, in place.
Public Declare PtrSafe Function Dib24Mix5X5 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long) As Long

' Sharpens a rectangle, or shows its edges in grey.
Public Declare PtrSafe Function Dib24Sharpen Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal mode As Long, ByRef status As Long) As LongPtr

' Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength.
Public Declare PtrSafe Function Dib24SharpenEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal strength As Long, ByRef status As Long) As LongPtr

' Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the rows
' included.
Public Declare PtrSafe Function Dib24ColorEdge Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal threshold As Long, ByVal mode As Long, ByRef status As Long) As LongPtr

' Keeps channel values by range.
Public Declare PtrSafe Function Dib24Filter Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal red As Long, ByVal green As Long, ByVal blue As Long, ByRef status As Long) As LongPtr

' Keeps pixels or channels by ranges in RGB or HSV.
Public Declare PtrSafe Function Dib24FilterEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal range0 As Long, ByVal range1 As Long, ByVal range2 As Long, ByVal range3 As Long, _
    ByVal range4 As Long, ByRef status As Long) As LongPtr

' Patterns, mosaics and histograms

' Mosaic of a 24-bit image.
Public Declare PtrSafe Function Dib24Mosaic Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal block As Long, ByRef status As Long) As LongPtr

' Mosaic by samples.
Public Declare PtrSafe Function DibMosaicEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal block As Long, ByRef status As Long) As LongPtr

' Mosaic by averages.
Public Declare PtrSafe Function DibMosaicEx2 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal block As Long, ByRef status As Long) As LongPtr

' XORs a colour over a rectangle, in place.
Public Declare PtrSafe Function Dib24XOR Lib "Kirvo.dll" (ByVal dib As LongPtr, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal colour As Long) As Long

' Counts how often each channel value occurs in a rectangle.
Public Declare PtrSafe Function DibHistgram Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByRef red As Long, ByRef green As Long, ByRef blue As Long) As Long

' Counts the different colours of an image.
Public Declare PtrSafe Function DibCountColors Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef count As Long) As Long

' Makes an image of one colour.
Public Declare PtrSafe Function Dib24Solid Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal colour As Long, _
    ByRef status As Long) As LongPtr

' Makes a horizontal gradient.
Public Declare PtrSafe Function Dib24Gradation1 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal start As Long, ByVal end_ As Long, _
    ByRef status As Long) As LongPtr

' Makes a vertical gradient, from start at the top to end at the bottom.
Public Declare PtrSafe Function Dib24Gradation2 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal start As Long, ByVal end_ As Long, _
    ByRef status As Long) As LongPtr

' Makes a bilinear gradient between four corners.
Public Declare PtrSafe Function Dib24Gradation3 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal top_left As Long, ByVal top_right As Long, _
    ByVal bottom_left As Long, ByVal bottom_right As Long, ByRef status As Long) As LongPtr

' Interleaves the rows of two images.
Public Declare PtrSafe Function Dib24InterLeave Lib "Kirvo.dll" (ByVal first As LongPtr, _
    ByVal x1 As Long, ByVal y1 As Long, ByVal second As LongPtr, ByVal x2 As Long, _
    ByVal y2 As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As LongPtr

' Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels.
Public Declare PtrSafe Function DibBlockMxM Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long, _
    ByVal radius As Long, ByVal maximum As Long, ByVal luminance As Long, _
    ByRef status As Long) As LongPtr

' Depth conversion

' Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.
Public Declare PtrSafe Function DibConvert24bit Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a 16-bit image of a 24- or 32-bit one.
Public Declare PtrSafe Function DibConvert16bit Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and 0x000000FF.
Public Declare PtrSafe Function DibConvert32bit Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a copy of a 24-bit image that keeps only the top bits of each channel.
Public Declare PtrSafe Function DibCutDepth Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal red_bits As Long, ByVal green_bits As Long, ByVal blue_bits As Long, _
    ByRef status As Long) As LongPtr

' Colour reduction

' Makes an 8-bit image with error diffusion to 256 fixed colours.
Public Declare PtrSafe Function DecreaseColor256 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed colours.
Public Declare PtrSafe Function DecreaseColor16 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes an 8-bit grey image, without diffusion.
Public Declare PtrSafe Function DecreaseColorMono256 Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8 pixels
' over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255.
Public Declare PtrSafe Function Decrease256Fast Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes an 8-bit image with exactly the colours of the source.
Public Declare PtrSafe Function Decrease256PaletteEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal mode As Long, ByRef status As Long) As LongPtr

' Decrease256PaletteEx with mode 0.
Public Declare PtrSafe Function Decrease256Palette Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a 4-bit image with exactly the colours of the source.
Public Declare PtrSafe Function Decrease16PaletteEx Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal mode As Long, ByRef status As Long) As LongPtr

' Decrease16PaletteEx with mode 0.
Public Declare PtrSafe Function Decrease16Palette Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Makes a 24-bit image of an indexed one.
Public Declare PtrSafe Function IncreaseColor16M Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByRef status As Long) As LongPtr

' Single pixels and lines

' Reads one pixel of an image of any depth.
Public Declare PtrSafe Function DibGetPixelColor Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByRef colour As Long) As Long

' Writes one pixel of a direct-colour image.
Public Declare PtrSafe Function DibSetPixelColor Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x As Long, ByVal y As Long, ByVal colour As Long) As Long

' Fills the pixels x0 to x1 (inclusive) of one row with a colour.
Public Declare PtrSafe Function DibSetLineColor Lib "Kirvo.dll" (ByVal dib As LongPtr, _
    ByVal x0 As Long, ByVal x1 As Long, ByVal y As Long, ByVal colour As Long) As Long

' Window fitting

' Resizes a window so that its client area shows an image at a whole scale.
Public Declare PtrSafe Sub FitWindowToImageEx Lib "Kirvo.dll" (ByVal window As LongPtr, _
    ByVal dib As LongPtr, ByVal scale_ As Long)

' FitWindowToImageEx at scale 1.
Public Declare PtrSafe Sub FitWindowToImage Lib "Kirvo.dll" (ByVal window As LongPtr, _
    ByVal dib As LongPtr)

Private Declare PtrSafe Function CreateWindowExA Lib "user32" (ByVal extendedStyle As Long, _
    ByVal className As String, ByVal caption As String, ByVal style As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal parent As LongPtr, _
    ByVal menu As LongPtr, ByVal instance As LongPtr, ByVal data As LongPtr) As LongPtr
Private Declare PtrSafe Function DestroyWindow Lib "user32" (ByVal window As LongPtr) As Long
Private Declare PtrSafe Function DefWindowProcA Lib "user32" (ByVal window As LongPtr, _
    ByVal message As Long, ByVal first As LongPtr, ByVal second As LongPtr) As LongPtr
#If Win64 Then
Private Declare PtrSafe Function SetWindowFunction Lib "user32" Alias "SetWindowLongPtrA" ( _
    ByVal window As LongPtr, ByVal index As Long, ByVal value As LongPtr) As LongPtr
#Else
Private Declare PtrSafe Function SetWindowFunction Lib "user32" Alias "SetWindowLongA" ( _
    ByVal window As LongPtr, ByVal index As Long, ByVal value As LongPtr) As LongPtr
#End If
Private WatchWindow As LongPtr
#Else

' Names of Windows

' Allocates a movable block.
Public Declare Function GlobalAlloc Lib "kernel32" (ByVal flags As Long, _
    ByVal bytes As Long) As Long

' Locks a block.
Public Declare Function GlobalLock Lib "kernel32" (ByVal block As Long) As Long

' Undoes one GlobalLock.
Public Declare Function GlobalUnlock Lib "kernel32" (ByVal block As Long) As Long

' Frees a block, locked or not.
Public Declare Function GlobalFree Lib "kernel32" (ByVal block As Long) As Long

' Size of a block.
Public Declare Function GlobalSize Lib "kernel32" (ByVal block As Long) As Long

' Reads entries of a logical palette.
Public Declare Function GetPaletteEntries Lib "gdi32" (ByVal palette As Long, ByVal first As Long, _
    ByVal count As Long, ByRef entries As Any) As Long

' Deletes a logical palette.
Public Declare Function DeleteObject Lib "gdi32" (ByVal object_ As Long) As Long

' Images

' Version of the library.
Public Declare Function GetVerKirvoDll Lib "Kirvo.dll" () As Long

' Registers for progress messages of the next long operation.
Public Declare Function KirvoSetProcess Lib "Kirvo.dll" (ByVal window As Long, _
    ByVal command As Long, ByVal enable As Long) As Long

' Number of colour-table entries of an image.
Public Declare Function DibNumColors Lib "Kirvo.dll" (ByVal header As Long) As Integer

' Size of the colour part of an image.
Public Declare Function PaletteSize Lib "Kirvo.dll" (ByVal header As Long) As Integer

' Depth of an image.
Public Declare Function DibQueryBitCount Lib "Kirvo.dll" (ByVal dib As Long) As Long

' Sets one colour-table entry.
Public Declare Function XPaletteQuad Lib "Kirvo.dll" (ByVal dib As Long, ByVal index As Long, _
    ByVal colour As Long) As Long

' Makes a logical palette of the library's fixed 256 colours.
Public Declare Function KirvoCreatePalette Lib "Kirvo.dll" () As Long

' Allocates a new packed DIB.
Public Declare Function DibMemAllocEx Lib "Kirvo.dll" (ByVal width As Long, ByVal height As Long, _
    ByVal bits As Long) As Long

' BMP files

' Reads a BMP file of any depth.
Public Declare Function DibReadEx Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef bits As Long, ByRef status As Long) As Long

' Reads a 24-bit BMP file.
Public Declare Function Dib24Read Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef status As Long) As Long

' Writes an image, or a rectangle of it, as a BMP file.
Public Declare Function DibWriteEx Lib "Kirvo.dll" (ByVal name As String, ByVal dib As Long, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' Writes a 24-bit image, or a rectangle of it, as a BMP file.
Public Declare Function Dib24Write Lib "Kirvo.dll" (ByVal name As String, ByVal dib As Long, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' JPEG decoder

' Begins a decode with the first bytes of a stream.
Public Declare Function JpgDecFirst Lib "Kirvo.dll" (ByVal data As Long, ByVal size As Long, _
    ByRef image As Long) As Long

' Goes on with a decode that JpgDecFirst has begun.
Public Declare Function JpgDecNext Lib "Kirvo.dll" (ByVal data As Long, ByVal size As Long, _
    ByVal final As Long, ByRef image As Long) As Long

' Decodes a file.
Public Declare Function JpgDecMainEx Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef error_ As Long) As Long

' Decodes a stream that is in memory.
Public Declare Function JpgDecMainHGLOBAL Lib "Kirvo.dll" (ByVal data As Long, ByVal size As Long, _
    ByRef width As Long, ByRef height As Long, ByRef error_ As Long) As Long

' Does nothing.
Public Declare Sub JpgDecSetNoblock Lib "Kirvo.dll" (ByVal a As Long, ByVal b As Long, _
    ByVal c As Long)

' Reads the header of a file up to its image data.
Public Declare Function JpgDecGetSpecEx Lib "Kirvo.dll" (ByVal name As String, _
    ByRef spec As JpgDecSpec) As Long

' The first four values of JpgDecGetSpecEx.
Public Declare Function JpgDecGetSpec Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef components As Long, ByRef lumaBlocks As Long) As Long

' Switches the storing and the retrieval of comments on or off.
Public Declare Sub JpgDecGetCommentEnable Lib "Kirvo.dll" (ByVal enable As Long)

' Counts the comments of the last stream.
Public Declare Function JpgDecCommentCounts Lib "Kirvo.dll" () As Long

' A stored comment.
Public Declare Function JpgDecGetComment Lib "Kirvo.dll" (ByVal index As Long) As Long

' Frees the stored comments.
Public Declare Sub JpgDecCommentFree Lib "Kirvo.dll" ()

' Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64 values
' each, row by row.
Public Declare Function JpgDecGetQtable Lib "Kirvo.dll" (ByRef luma As Integer, _
    ByRef chroma As Integer) As Long

' One quantisation table of the last decode.
Public Declare Function JpgDecGetQtableEx Lib "Kirvo.dll" (ByVal number As Long, _
    ByRef table As Integer) As Long

' The marker that ended the last decode with KIRVO_JPEG_MARKER.
Public Declare Function JpgDecGetLastUexMarker Lib "Kirvo.dll" (ByRef position As Long) As Integer

' JPEG encoder

' Sizes of the most recent encode.
Public Declare Function JpgCodGetStatus Lib "Kirvo.dll" (ByRef source_bytes As Long, _
    ByRef output_bytes As Long) As Long

' Starts to encode a rectangle in colour and writes the headers.
Public Declare Function JpgCodFirst Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByVal mcus_per_call As Long, _
    ByRef status As Long) As Long

' Goes on with the encode that JpgCodFirst has started.
Public Declare Function JpgCodNext Lib "Kirvo.dll" (ByVal control As Long, _
    ByRef stream_bytes As Long) As Long

' Encodes a rectangle in colour into a file.
Public Declare Function JpgCodMainEx Lib "Kirvo.dll" (ByVal path As String, ByVal dib As Long, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal unused1 As Long, ByVal unused2 As Long) As Long

' Encodes a rectangle in colour into a memory block.
Public Declare Function JpgCodMainHGLOBAL Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByRef stream_bytes As Long, _
    ByRef status As Long) As Long

' Starts to encode a rectangle as a grey stream.
Public Declare Function JpgCodFirst_M Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByVal grey_mode As Long, _
    ByVal mcus_per_call As Long, ByRef status As Long) As Long

' Goes on with the encode that JpgCodFirst_M has started.
Public Declare Function JpgCodNext_M Lib "Kirvo.dll" (ByVal control As Long, _
    ByRef stream_bytes As Long) As Long

' Encodes a rectangle as a grey stream into a file.
Public Declare Function JpgCodMainEx_M Lib "Kirvo.dll" (ByVal path As String, ByVal dib As Long, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal grey_mode As Long) As Long

' Encodes a rectangle as a grey stream into a memory block.
Public Declare Function JpgCodMainHGLOBAL_M Lib "Kirvo.dll" (ByVal dib As Long, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long, _
    ByVal grey_mode As Long, ByRef stream_bytes As Long, ByRef status As Long) As Long

' JPEG encoder settings

' Sets how colour streams sample chroma.
Public Declare Function JpgCodSetSubsample Lib "Kirvo.dll" (ByVal mode As Long) As Long

' Selects one of the quality levels 2 to 5.
Public Declare Function JpgCodSetQ Lib "Kirvo.dll" (ByVal q As Long) As Long

' Selects a quality level.
Public Declare Function JpgCodSetQEx Lib "Kirvo.dll" (ByVal level As Long) As Long

' Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx).
Public Declare Function JpgCodSetQtable Lib "Kirvo.dll" (ByRef luminance As Integer, _
    ByRef chrominance As Integer) As Long

' As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0.
Public Declare Function JpgCodSetQtableEx Lib "Kirvo.dll" (ByRef luminance As Integer, _
    ByRef chrominance As Integer, ByVal count As Long) As Long

' Sets a comment for the next stream only.
Public Declare Sub JpgCodSetComment Lib "Kirvo.dll" (ByRef text As Any, ByVal length As Long)

' Targa, Q0, RAW, Photo CD and icon files

' Reads an uncompressed 24-bit Targa file (image type 2), with either origin.
Public Declare Function Targa24Read Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef status As Long) As Long

' Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with its origin at the
' bottom left.
Public Declare Function Targa24Write Lib "Kirvo.dll" (ByVal name As String, ByVal dib As Long, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' Reads a Q0 file.
Public Declare Function Q0Read Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef bits As Long, ByRef status As Long) As Long

' Reads a RAW file.
Public Declare Function RawRead Lib "Kirvo.dll" (ByVal name As String, ByRef width As Long, _
    ByRef height As Long, ByRef bits As Long, ByRef status As Long) As Long

' Reads a Photo CD image with the Photo CD access library, which is loaded for the length of the
' call by the name PCDLIB32.DLL and the system's search rules.
Public Declare Function PcdRead Lib "Kirvo.dll" (ByVal name As String, ByVal resolution As Long, _
    ByVal progress As Long, ByRef width As Long, ByRef height As Long, _
    ByRef status As Long) As Long

' Lists the images of an icon or cursor file by its directory.
Public Declare Function IcoGetInfo Lib "Kirvo.dll" (ByVal name As String, ByRef records As Any, _
    ByVal size As Long) As Long

' Lists the images of an icon or cursor file by their own headers.
Public Declare Function IcoGetInfoEx Lib "Kirvo.dll" (ByVal name As String, ByRef records As Any, _
    ByVal size As Long) As Long

' Reads one image of an icon or cursor file, and its transparency mask.
Public Declare Function IcoGetData Lib "Kirvo.dll" (ByVal name As String, ByVal index As Long, _
    ByRef width As Long, ByRef height As Long, ByRef bits As Long, ByRef status As Long, _
    ByRef mask As Any) As Long

' Copy and compose

' Copies a rectangle into an image that was made of exactly its size.
Public Declare Function Dib24Copy Lib "Kirvo.dll" (ByVal to_ As Long, ByVal from As Long, _
    ByVal left As Long, ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Copies a rectangle between two images of any sizes and one depth.
Public Declare Function Dib24CopyEx Lib "Kirvo.dll" (ByVal to_ As Long, ByVal to_left As Long, _
    ByVal to_top As Long, ByVal from As Long, ByVal from_left As Long, ByVal from_top As Long, _
    ByVal width As Long, ByVal height As Long) As Long

' Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
Public Declare Function Dib24DupEx Lib "Kirvo.dll" (ByVal from As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Composes a rectangle of one image onto one of the same size of another.
Public Declare Function Dib24Add Lib "Kirvo.dll" (ByVal to_ As Long, ByVal to_left As Long, _
    ByVal to_top As Long, ByVal from As Long, ByVal from_left As Long, ByVal from_top As Long, _
    ByVal width As Long, ByVal height As Long, ByVal mode As Long) As Long

' Sets the key colour of Dib24Add for the whole process.
Public Declare Sub SetKeyColorDib24Add Lib "Kirvo.dll" (ByVal colour As Long)

' Flip, mirror, turn

' Turns a rectangle upside down, in place.
Public Declare Function Dib24Flip Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Exchanges left and right in a rectangle, in place.
Public Declare Function Dib24Mirror Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Turns a rectangle by 180 degrees, in place.
Public Declare Function Dib24FlipMirror Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long) As Long

' Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
' colour table or masks.
Public Declare Function Dib24Rotate Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByVal direction As Long, _
    ByRef status As Long) As Long

' Zoom

' Resizes a rectangle into a new image by taking the nearest pixel.
Public Declare Function Dib24ZoomEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByVal new_width As Long, _
    ByVal new_height As Long, ByRef status As Long) As Long

' Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with 32-bit
' coordinates, or by averaging.
Public Declare Function Dib24ZoomEx2 Lib "Kirvo.dll" (ByVal dib As Long, ByVal left As Long, _
    ByVal top As Long, ByVal width As Long, ByVal height As Long, ByVal new_width As Long, _
    ByVal new_height As Long, ByRef status As Long, ByVal smooth As Long) As Long

' Tone

' Inverts a rectangle in place.
Public Declare Function Dib24Negative Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' Exchanges the channels of a rectangle in place.
Public Declare Function Dib24RGBChange Lib "Kirvo.dll" (ByVal dib As Long, ByVal mode As Long, _
    ByVal x As Long, ByVal y As Long, ByVal width As Long, ByVal height As Long) As Long

' Brightens or darkens.
Public Declare Function Dib24Brightness Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal level As Long, _
    ByRef status As Long) As Long

' Raises or lowers the contrast around mid-grey.
Public Declare Function Dib24Contrast Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal level As Long, _
    ByRef status As Long) As Long

' Turns a rectangle to grey.
Public Declare Function Dib24Monochrome Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Halves the intensity.
Public Declare Function Dib24HalfTone Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Multiplies all channels by a fraction.
Public Declare Function Dib24ToneCtrl Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal numerator As Long, _
    ByVal denominator As Long, ByRef status As Long) As Long

' Multiplies each channel by its factor.
Public Declare Function Dib24ToneCtrlEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal red As Double, _
    ByVal green As Double, ByVal blue As Double, ByRef status As Long) As Long

' Corrects the gamma.
Public Declare Function Dib24Gamma Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal gamma As Double, _
    ByRef status As Long) As Long

' Corrects the gamma of each channel, as Dib24Gamma does.
Public Declare Function DibGammaEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal red As Double, _
    ByVal green As Double, ByVal blue As Double, ByRef status As Long) As Long

' Separates the channels.
Public Declare Function Dib24Separate Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef red As Any, _
    ByRef green As Any, ByRef blue As Any) As Long

' Maps every channel through a table.
Public Declare Function DibColorMapEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef table As Byte, _
    ByRef status As Long) As Long

' Hue and HSV

' Converts a colour to hue, saturation and value.
Public Declare Sub RGB2HSV Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long, ByRef hue As Long, ByRef saturation As Long, ByRef value As Long)

' Saturation and value of a colour.
Public Declare Sub RGB2SV Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long, ByRef saturation As Long, ByRef value As Long)

' Value of a colour.
Public Declare Function RGB2V Lib "Kirvo.dll" (ByVal red As Long, ByVal green As Long, _
    ByVal blue As Long) As Long

' Converts hue, saturation and value to a colour.
Public Declare Sub HSV2RGB Lib "Kirvo.dll" (ByVal hue As Long, ByVal saturation As Long, _
    ByVal value As Long, ByRef red As Long, ByRef green As Long, ByRef blue As Long)

' Changes the hue of a whole image in place.
Public Declare Function DibModifyHue Lib "Kirvo.dll" (ByVal dib As Long, ByVal mode As Long, _
    ByVal value As Long) As Long

' Makes a copy of a rectangle with its hue changed.
Public Declare Function DibModifyHueEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal mode As Long, _
    ByVal value As Long, ByRef status As Long) As Long

' Filters

' Blurs a rectangle with a fixed 3 x 3 kernel.
Public Declare Function Dib24Gausian Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Sets the kernel of DibFilter3x3, for the life of the process.
Public Declare Sub SetFilter3x3 Lib "Kirvo.dll" (ByVal k0 As Long, ByVal k1 As Long, _
    ByVal k2 As Long, ByVal k3 As Long, ByVal k4 As Long, ByVal k5 As Long, ByVal k6 As Long, _
    ByVal k7 As Long, ByVal k8 As Long, ByVal divisor As Long)

' Filters a rectangle with the kernel of SetFilter3x3.
Public Declare Function DibFilter3x3 Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Sets the mask of Dib24Mix3X3, for the life of the process.
Public Declare Sub Dib24Mix3X3SetMask Lib "Kirvo.dll" (ByRef weights As Long)

' Sets the mask of Dib24Mix5X5, for the life of the process.
Public Declare Sub Dib24Mix5X5SetMask Lib "Kirvo.dll" (ByRef weights As Long)

' Draws the 3 x 3 neighbours of one pixel towards its colour, in place.
Public Declare Function Dib24Mix3X3 Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long) As Long

' Draws the 5 x 5 neighbours of one pixel towards its colour, in place.
Public Declare Function Dib24Mix5X5 Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long) As Long

' Sharpens a rectangle, or shows its edges in grey.
Public Declare Function Dib24Sharpen Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal mode As Long, _
    ByRef status As Long) As Long

' Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength.
Public Declare Function Dib24SharpenEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal strength As Long, _
    ByRef status As Long) As Long

' Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the rows
' included.
Public Declare Function Dib24ColorEdge Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal threshold As Long, _
    ByVal mode As Long, ByRef status As Long) As Long

' Keeps channel values by range.
Public Declare Function Dib24Filter Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal red As Long, _
    ByVal green As Long, ByVal blue As Long, ByRef status As Long) As Long

' Keeps pixels or channels by ranges in RGB or HSV.
Public Declare Function Dib24FilterEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal range0 As Long, _
    ByVal range1 As Long, ByVal range2 As Long, ByVal range3 As Long, ByVal range4 As Long, _
    ByRef status As Long) As Long

' Patterns, mosaics and histograms

' Mosaic of a 24-bit image.
Public Declare Function Dib24Mosaic Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal block As Long, _
    ByRef status As Long) As Long

' Mosaic by samples.
Public Declare Function DibMosaicEx Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal block As Long, _
    ByRef status As Long) As Long

' Mosaic by averages.
Public Declare Function DibMosaicEx2 Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal block As Long, _
    ByRef status As Long) As Long

' XORs a colour over a rectangle, in place.
Public Declare Function Dib24XOR Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal colour As Long) As Long

' Counts how often each channel value occurs in a rectangle.
Public Declare Function DibHistgram Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByRef red As Long, _
    ByRef green As Long, ByRef blue As Long) As Long

' Counts the different colours of an image.
Public Declare Function DibCountColors Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef count As Long) As Long

' Makes an image of one colour.
Public Declare Function Dib24Solid Lib "Kirvo.dll" (ByVal width As Long, ByVal height As Long, _
    ByVal bits As Long, ByVal colour As Long, ByRef status As Long) As Long

' Makes a horizontal gradient.
Public Declare Function Dib24Gradation1 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal start As Long, ByVal end_ As Long, _
    ByRef status As Long) As Long

' Makes a vertical gradient, from start at the top to end at the bottom.
Public Declare Function Dib24Gradation2 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal start As Long, ByVal end_ As Long, _
    ByRef status As Long) As Long

' Makes a bilinear gradient between four corners.
Public Declare Function Dib24Gradation3 Lib "Kirvo.dll" (ByVal width As Long, _
    ByVal height As Long, ByVal bits As Long, ByVal top_left As Long, ByVal top_right As Long, _
    ByVal bottom_left As Long, ByVal bottom_right As Long, ByRef status As Long) As Long

' Interleaves the rows of two images.
Public Declare Function Dib24InterLeave Lib "Kirvo.dll" (ByVal first As Long, ByVal x1 As Long, _
    ByVal y1 As Long, ByVal second As Long, ByVal x2 As Long, ByVal y2 As Long, _
    ByVal width As Long, ByVal height As Long, ByRef status As Long) As Long

' Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels.
Public Declare Function DibBlockMxM Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal radius As Long, _
    ByVal maximum As Long, ByVal luminance As Long, ByRef status As Long) As Long

' Depth conversion

' Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.
Public Declare Function DibConvert24bit Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a 16-bit image of a 24- or 32-bit one.
Public Declare Function DibConvert16bit Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and 0x000000FF.
Public Declare Function DibConvert32bit Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a copy of a 24-bit image that keeps only the top bits of each channel.
Public Declare Function DibCutDepth Lib "Kirvo.dll" (ByVal dib As Long, ByVal red_bits As Long, _
    ByVal green_bits As Long, ByVal blue_bits As Long, ByRef status As Long) As Long

' Colour reduction

' Makes an 8-bit image with error diffusion to 256 fixed colours.
Public Declare Function DecreaseColor256 Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed colours.
Public Declare Function DecreaseColor16 Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes an 8-bit grey image, without diffusion.
Public Declare Function DecreaseColorMono256 Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8 pixels
' over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255.
Public Declare Function Decrease256Fast Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes an 8-bit image with exactly the colours of the source.
Public Declare Function Decrease256PaletteEx Lib "Kirvo.dll" (ByVal dib As Long, _
    ByVal mode As Long, ByRef status As Long) As Long

' Decrease256PaletteEx with mode 0.
Public Declare Function Decrease256Palette Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a 4-bit image with exactly the colours of the source.
Public Declare Function Decrease16PaletteEx Lib "Kirvo.dll" (ByVal dib As Long, _
    ByVal mode As Long, ByRef status As Long) As Long

' Decrease16PaletteEx with mode 0.
Public Declare Function Decrease16Palette Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Makes a 24-bit image of an indexed one.
Public Declare Function IncreaseColor16M Lib "Kirvo.dll" (ByVal dib As Long, _
    ByRef status As Long) As Long

' Single pixels and lines

' Reads one pixel of an image of any depth.
Public Declare Function DibGetPixelColor Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByRef colour As Long) As Long

' Writes one pixel of a direct-colour image.
Public Declare Function DibSetPixelColor Lib "Kirvo.dll" (ByVal dib As Long, ByVal x As Long, _
    ByVal y As Long, ByVal colour As Long) As Long

' Fills the pixels x0 to x1 (inclusive) of one row with a colour.
Public Declare Function DibSetLineColor Lib "Kirvo.dll" (ByVal dib As Long, ByVal x0 As Long, _
    ByVal x1 As Long, ByVal y As Long, ByVal colour As Long) As Long

' Window fitting

' Resizes a window so that its client area shows an image at a whole scale.
Public Declare Sub FitWindowToImageEx Lib "Kirvo.dll" (ByVal window As Long, ByVal dib As Long, _
    ByVal scale_ As Long)

' FitWindowToImageEx at scale 1.
Public Declare Sub FitWindowToImage Lib "Kirvo.dll" (ByVal window As Long, ByVal dib As Long)

Private Declare Function CreateWindowExA Lib "user32" (ByVal extendedStyle As Long, _
    ByVal className As String, ByVal caption As String, ByVal style As Long, ByVal x As Long, _
    ByVal y As Long, ByVal width As Long, ByVal height As Long, ByVal parent As Long, _
    ByVal menu As Long, ByVal instance As Long, ByVal data As Long) As Long
Private Declare Function DestroyWindow Lib "user32" (ByVal window As Long) As Long
Private Declare Function DefWindowProcA Lib "user32" (ByVal window As Long, _
    ByVal message As Long, ByVal first As Long, ByVal second As Long) As Long
Private Declare Function SetWindowFunction Lib "user32" Alias "SetWindowLongA" ( _
    ByVal window As Long, ByVal index As Long, ByVal value As Long) As Long
Private WatchWindow As Long
#End If

Private Const WatchCommand As Long = 1
Private Watcher As Object

' The name and the meaning of a status code.
Public Function KirvoMessage(ByVal status As Long) As String
    Select Case status
    Case KIRVO_OK
        KirvoMessage = "KIRVO_OK: Success."
    Case KIRVO_BAD_PARAMETER
        KirvoMessage = "KIRVO_BAD_PARAMETER: A rectangle that is empty, negative or outside the image, a value out of its range, or a block of memory smaller than its header says."
    Case KIRVO_NO_MEMORY
        KirvoMessage = "KIRVO_NO_MEMORY: Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes, or a JPEG stream has outgrown its block."
    Case KIRVO_NULL_HANDLE
        KirvoMessage = "KIRVO_NULL_HANDLE: Null handle, null data, or a handle that is freed or invented."
    Case KIRVO_CANNOT_OPEN
        KirvoMessage = "KIRVO_CANNOT_OPEN: A file could not be opened or created."
    Case KIRVO_READ_ERROR
        KirvoMessage = "KIRVO_READ_ERROR: A read error, or a file that is too short."
    Case KIRVO_WRITE_ERROR
        KirvoMessage = "KIRVO_WRITE_ERROR: A write error: the disk is full or was taken away."
    Case KIRVO_JPEG_NO_SOI
        KirvoMessage = "KIRVO_JPEG_NO_SOI: JPEG: no start of image."
    Case KIRVO_JPEG_MARKER
        KirvoMessage = "KIRVO_JPEG_MARKER: JPEG: a marker that does not belong into the entropy-coded data."
    Case KIRVO_JPEG_EARLY_EOI
        KirvoMessage = "KIRVO_JPEG_EARLY_EOI: JPEG: end of image before the first scan."
    Case KIRVO_JPEG_HEADER
        KirvoMessage = "KIRVO_JPEG_HEADER: JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer."
    Case KIRVO_JPEG_HUFFMAN
        KirvoMessage = "KIRVO_JPEG_HUFFMAN: JPEG: a Huffman code that does not exist, or a table that was not defined."
    Case KIRVO_JPEG_CATEGORY
        KirvoMessage = "KIRVO_JPEG_CATEGORY: JPEG encoder: a coefficient that has no code."
    Case KIRVO_ABANDONED
        KirvoMessage = "KIRVO_ABANDONED: The caller has abandoned a piecewise encode or decode."
    Case KIRVO_BUSY
        KirvoMessage = "KIRVO_BUSY: Another encode or decode is in progress."
    Case KIRVO_JPEG_FRAME
        KirvoMessage = "KIRVO_JPEG_FRAME: JPEG: a frame type other than baseline and progressive Huffman coding."
    Case KIRVO_NOT_BMP
        KirvoMessage = "KIRVO_NOT_BMP: Not a BMP file, or a depth that BMP files do not have."
    Case KIRVO_NEEDS_8
        KirvoMessage = "KIRVO_NEEDS_8: The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them."
    Case KIRVO_NEEDS_24
        KirvoMessage = "KIRVO_NEEDS_24: The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them."
    Case KIRVO_NOT_TARGA
        KirvoMessage = "KIRVO_NOT_TARGA: Not an uncompressed 24-bit Targa file."
    Case KIRVO_Q0_SIZE
        KirvoMessage = "KIRVO_Q0_SIZE: The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for it."
    Case KIRVO_NOT_RAW
        KirvoMessage = "KIRVO_NOT_RAW: Not a RAW file, or one too short for its size."
    Case KIRVO_RAW_PALETTE
        KirvoMessage = "KIRVO_RAW_PALETTE: A RAW file with a palette, which the reader does not offer."
    Case KIRVO_MORE_THAN_256
        KirvoMessage = "KIRVO_MORE_THAN_256: More than 256 different colours (239 and the system colours in mode 0)."
    Case KIRVO_MORE_THAN_16
        KirvoMessage = "KIRVO_MORE_THAN_16: More than 16 different colours, or in mode 0 others than the system colours."
    Case KIRVO_NOT_ICON
        KirvoMessage = "KIRVO_NOT_ICON: Not an icon or cursor file."
    Case KIRVO_NEEDS_8_16_24_32
        KirvoMessage = "KIRVO_NEEDS_8_16_24_32: The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer."
    Case KIRVO_NEEDS_16_24_32
        KirvoMessage = "KIRVO_NEEDS_16_24_32: The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer."
    Case KIRVO_NEEDS_24_32
        KirvoMessage = "KIRVO_NEEDS_24_32: The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24."
    Case KIRVO_NEEDS_8_24_32
        KirvoMessage = "KIRVO_NEEDS_8_24_32: The image must have 8, 24 or 32 bits."
    Case KIRVO_NEEDS_16_32
        KirvoMessage = "KIRVO_NEEDS_16_32: The image must have 16 or 32 bits."
    Case KIRVO_NEEDS_1_4_8
        KirvoMessage = "KIRVO_NEEDS_1_4_8: The image must have 1, 4 or 8 bits."
    Case KIRVO_NEEDS_8_24
        KirvoMessage = "KIRVO_NEEDS_8_24: The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24."
    Case KIRVO_NEEDS_16_24
        KirvoMessage = "KIRVO_NEEDS_16_24: The image must have 16 or 24 bits."
    Case Else
        KirvoMessage = "status " & status
    End Select
End Function

' Raises an error unless the status is KIRVO_OK.
Public Sub KirvoCheck(ByVal status As Long)
    If status <> KIRVO_OK Then Err.Raise vbObjectError + 512 - status, "Kirvo", KirvoMessage(status)
End Sub

' The next long operation calls listener.KirvoProgress(percent), a Sub with a Long: 0, then steps of
' at least 5, and 100 at the end. Nothing ends that: say so before the program ends.
Public Sub KirvoWatch(ByVal listener As Object)
    Const WindowFunctionIndex As Long = -4, MessagesOnly As Long = -3
    Set Watcher = listener
    If Watcher Is Nothing Then
        KirvoSetProcess 0, WatchCommand, 0
        If WatchWindow <> 0 Then DestroyWindow WatchWindow
        WatchWindow = 0
        Exit Sub
    End If
    If WatchWindow = 0 Then
        WatchWindow = CreateWindowExA(0, "STATIC", vbNullString, 0, 0, 0, 0, 0, MessagesOnly, 0, 0, 0)
        SetWindowFunction WatchWindow, WindowFunctionIndex, AddressOf KirvoReceive
    End If
    KirvoSetProcess WatchWindow, WatchCommand, 1
End Sub

' Receives the messages of the hidden window.
#If VBA7 Then
Public Function KirvoReceive(ByVal window As LongPtr, ByVal message As Long, _
    ByVal command As LongPtr, ByVal percent As LongPtr) As LongPtr
#Else
Public Function KirvoReceive(ByVal window As Long, ByVal message As Long, _
    ByVal command As Long, ByVal percent As Long) As Long
#End If
    If message <> WM_COMMAND Then
        KirvoReceive = DefWindowProcA(window, message, command, percent)
    ElseIf command = WatchCommand And Not Watcher Is Nothing Then
        Watcher.KirvoProgress CLng(percent)
    End If
End Function
