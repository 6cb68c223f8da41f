VERSION 5.00
Begin VB.Form BlurForm
   BorderStyle     =   3  'Fixed Dialog
   Caption         =   "Blur"
   ClientHeight    =   1560
   ClientLeft      =   45
   ClientTop       =   330
   ClientWidth     =   5400
   LinkTopic       =   "BlurForm"
   MaxButton       =   0   'False
   ScaleHeight     =   1560
   ScaleWidth      =   5400
   StartUpPosition =   2  'CenterScreen
   Begin VB.TextBox Source
      Height          =   315
      Left            =   120
      TabIndex        =   0
      Text            =   "in.jpg"
      Top             =   120
      Width           =   5160
   End
   Begin VB.TextBox Target
      Height          =   315
      Left            =   120
      TabIndex        =   1
      Text            =   "out.bmp"
      Top             =   540
      Width           =   5160
   End
   Begin VB.CommandButton BlurButton
      Caption         =   "&Blur"
      Default         =   -1  'True
      Height          =   375
      Left            =   120
      TabIndex        =   2
      Top             =   1020
      Width           =   1215
   End
   Begin VB.Label Message
      Height          =   255
      Left            =   1500
      TabIndex        =   3
      Top             =   1080
      Width           =   3780
   End
End
Attribute VB_Name = "BlurForm"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
' Opens a JPEG file, blurs it and saves it as a BMP file.
Option Explicit

Private Stage As String

' Called by KirvoWatch.
Public Sub KirvoProgress(ByVal percent As Long)
    Message.Caption = Stage & " " & percent & "%"
    Message.Refresh
End Sub

Private Sub BlurButton_Click()
    Dim photo As Long, blurred As Long
    Dim photoWidth As Long, photoHeight As Long, status As Long

    On Error GoTo Failed
    Stage = "Reading"
    KirvoWatch Me
    photo = JpgDecMainEx(Source.Text, photoWidth, photoHeight, status)
    KirvoCheck status
    Stage = "Blurring"
    KirvoWatch Me
    blurred = Dib24Gausian(photo, 0, 0, photoWidth, photoHeight, status)
    KirvoCheck status
    KirvoCheck DibWriteEx(Target.Text, blurred, 0, 0, -1, -1)
    Message.Caption = Target.Text & ": " & photoWidth & " x " & photoHeight
Finish:
    If blurred <> 0 Then GlobalFree blurred
    If photo <> 0 Then GlobalFree photo
    KirvoWatch Nothing
    Exit Sub
Failed:
    Message.Caption = Err.Description
    Resume Finish
End Sub
