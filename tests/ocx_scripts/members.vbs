' Calls all members of the registered control that open no dialog, and says what came back.
Option Explicit
Dim viewer
Set viewer = CreateObject("KorvelAuditViewerOCX.AuditViewer")
WScript.Echo TypeName(viewer)
WScript.Echo viewer.DatabaseType & " " & viewer.DefaultSQLServer & " " & viewer.ViewSideTools & " " & viewer.ViewToolBar
viewer.DatabaseType = 1
viewer.ViewSideTools = False
viewer.ViewToolBar = False
viewer.DefaultSQLServer = WScript.Arguments(0)
WScript.Echo viewer.DatabaseType & " " & (viewer.DefaultSQLServer = WScript.Arguments(0)) & " " & viewer.ViewSideTools & " " & viewer.ViewToolBar
viewer.DatabaseType = 0
viewer.ViewTools True
viewer.BuildMenu
viewer.BuildToolbar
viewer.BuildMisc
viewer.BuildPopup "Font"
viewer.ListViewColSetup
viewer.ShowKeyField True
viewer.SwitchLanguage
viewer.OpenDefaultSQLServer
viewer.LockControls
viewer.UnlockControls
viewer.UnselectALL
viewer.SelectALL
viewer.ExpandAll
viewer.TriggerAdvancedQuery "select 1"
viewer.TriggerQuery
viewer.DisplayNoOfRecords
On Error Resume Next
viewer.NoSuchMember
WScript.Echo "no such member: " & Err.Number
Err.Clear
viewer.DatabaseType = "many"
WScript.Echo "wrong type: " & Err.Number
Err.Clear
viewer.BuildPopup "Font", 1
WScript.Echo "too many arguments: " & Err.Number
Err.Clear
viewer.BuildPopup
WScript.Echo "too few arguments: " & Err.Number
