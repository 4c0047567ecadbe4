' Opens an audit trail, runs the standard query and exports the records as text, which opens in the text editor.
' usage: cscript //nologo query.vbs FOLDER
' FOLDER has the databases, such as those of: korvel-audit demo --folder FOLDER
' A script has no form: the control works without being seen, and its dialogs are windows of their own.
Option Explicit

If WScript.Arguments.Count <> 1 Then
  WScript.Echo "usage: cscript //nologo query.vbs FOLDER"
  WScript.Quit 2
End If

Dim viewer
Set viewer = CreateObject("KorvelAuditViewerOCX.AuditViewer")
viewer.DefaultSQLServer = WScript.Arguments(0)
viewer.DatabaseType = 0
viewer.OpenDefaultSQLServer
viewer.SelectALL
viewer.TriggerQuery
viewer.DisplayNoOfRecords
viewer.ExportNotepad
