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
@{ constants }@
{$IFNDEF MSWINDOWS}

  // Names of Windows
@{ platform_constants }@
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
@{ platform_records }@
{$ENDIF}

  PKirvoLongWord = ^LongWord;
  PKirvoHandle = ^HGLOBAL;
@{ records }@

{$IFNDEF MSWINDOWS}
@{ platform_functions }@
{$ENDIF}
@{ functions }@

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
@{ messages }@
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
