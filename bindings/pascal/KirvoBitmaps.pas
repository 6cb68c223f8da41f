{ Pictures of Kirvo from and to the TBitmap and TPicture of Delphi and Lazarus. }
unit KirvoBitmaps;

{$IFDEF FPC}
  {$MODE DELPHI}
{$ENDIF}

interface

uses
  SysUtils, Classes, Graphics, KirvoImages;

{ The picture as a new bitmap, which the caller frees. }
function KirvoToBitmap(Image: TKirvoImage): TBitmap;

{ Shows the picture in a TPicture: Image1.Picture, or one to be saved by the LCL. }
procedure KirvoToPicture(Image: TKirvoImage; Picture: TPicture);

{ A new picture of a bitmap; also of Picture.Bitmap. }
function KirvoFromBitmap(Bitmap: TBitmap): TKirvoImage;

implementation

function KirvoToBitmap(Image: TKirvoImage): TBitmap;
var
  Stream: TMemoryStream;
begin
  Stream := TMemoryStream.Create;
  Result := TBitmap.Create;
  try
    try
      Image.SaveToStream(Stream, 'bmp');
      Stream.Position := 0;
      Result.LoadFromStream(Stream);
    except
      Result.Free;
      raise;
    end;
  finally
    Stream.Free;
  end;
end;

procedure KirvoToPicture(Image: TKirvoImage; Picture: TPicture);
var
  Bitmap: TBitmap;
begin
  Bitmap := KirvoToBitmap(Image);
  try
    Picture.Assign(Bitmap);
  finally
    Bitmap.Free;
  end;
end;

function KirvoFromBitmap(Bitmap: TBitmap): TKirvoImage;
var
  Stream: TMemoryStream;
begin
  Stream := TMemoryStream.Create;
  try
    Bitmap.SaveToStream(Stream);
    Stream.Position := 0;
    Result := TKirvoImage.OpenStream(Stream);
  finally
    Stream.Free;
  end;
end;

end.
