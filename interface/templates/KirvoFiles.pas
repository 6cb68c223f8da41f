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

@{ constants }@

type
  { What is known of a file: nil is nothing. }
  TKirvoFile = Pointer;
  PKirvoFile = ^TKirvoFile;
@{ records }@
@{ functions }@

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
@{ messages }@
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
