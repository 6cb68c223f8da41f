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
@{ statuses }@
End Enum

@{ constants }@
@{ structures }@

#If VBA7 Then
@{ safe_functions }@
#Else
@{ functions }@
#End If

' The name and the meaning of a status.
Public Function KirvoFilesMessage(ByVal status As Long) As String
    Select Case status
@{ messages }@
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
