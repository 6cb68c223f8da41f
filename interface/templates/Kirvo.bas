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
@{ statuses }@
End Enum

@{ constants }@
@{ structures }@

#If VBA7 Then
@{ safe_functions }@

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
@{ functions }@

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
@{ messages }@
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
