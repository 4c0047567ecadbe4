' A program that holds the control until it is ended. Wine's script host has no WScript.Sleep.
Option Explicit
Dim viewer
Set viewer = CreateObject("KorvelAuditViewerOCX.AuditViewer")
WScript.Echo "ready"
Do
Loop
