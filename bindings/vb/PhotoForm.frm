VERSION 5.00
Begin VB.Form PhotoForm
   BorderStyle     =   3  'Fixed Dialog
   Caption         =   "Photo"
   ClientHeight    =   1560
   ClientLeft      =   45
   ClientTop       =   330
   ClientWidth     =   5400
   LinkTopic       =   "PhotoForm"
   MaxButton       =   0   'False
   ScaleHeight     =   1560
   ScaleWidth      =   5400
   StartUpPosition =   2  'CenterScreen
   Begin VB.TextBox Source
      Height          =   315
      Left            =   120
      TabIndex        =   0
      Text            =   "photo.jpg"
      Top             =   120
      Width           =   5160
   End
   Begin VB.TextBox Target
      Height          =   315
      Left            =   120
      TabIndex        =   1
      Text            =   "page.png"
      Top             =   540
      Width           =   5160
   End
   Begin VB.CommandButton MakeButton
      Caption         =   "&Make ready"
      Default         =   -1  'True
      Height          =   375
      Left            =   120
      TabIndex        =   2
      Top             =   1020
      Width           =   1215
   End
   Begin VB.PictureBox Page
      AutoSize        =   -1  'True
      Height          =   1500
      Left            =   120
      TabIndex        =   4
      Top             =   1560
      Width           =   5160
   End
   Begin VB.Label Message
      Height          =   255
      Left            =   1500
      TabIndex        =   3
      Top             =   1080
      Width           =   3780
   End
End
Attribute VB_Name = "PhotoForm"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
' A photo made ready for a page, 800 pixels wide, shown in a picture box and saved.
Option Explicit

' Called by the picture's operations.
Public Sub KirvoProgress(ByVal percent As Long)
    Message.Caption = percent & "%"
    Message.Refresh
End Sub

Private Sub MakeReady(ByVal fromName As String, ByVal toName As String)
    Dim photo As New KirvoImage, part As KirvoImage, small As KirvoImage
    Set photo.Listener = Me
    photo.OpenFile fromName ' upright, as its camera was held
    Set part = photo.Crop(photo.Width \ 20, photo.Height \ 20, photo.Width * 9 \ 10, photo.Height * 9 \ 10)
    Set small = part.Resize(800, part.Height * 800 \ part.Width).Sharpen()
    Set Page.Picture = small.Picture
    small.SaveFile toName
End Sub

Private Sub MakeButton_Click()
    On Error GoTo Failed
    MakeReady Source.Text, Target.Text
    Message.Caption = Target.Text
Failed:
    If Err.Number <> 0 Then Message.Caption = Err.Description
    KirvoWatch Nothing
End Sub
