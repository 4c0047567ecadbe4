// Calls all members of the registered control that open no dialog, and says what came back.
var viewer = new ActiveXObject("KorvelAuditViewerOCX.AuditViewer");
var folder = WScript.Arguments(0);
function state() {
  return [viewer.DatabaseType, viewer.DefaultSQLServer === folder, viewer.ViewSideTools, viewer.ViewToolBar].join(" ");
}
// Failures that this interpreter makes itself have other numbers on other systems.
function fails(action) {
  try {
    action();
  } catch (failure) {
    return true;
  }
  return false;
}
WScript.Echo(state());
viewer.DatabaseType = 1;
viewer.ViewSideTools = false;
viewer.ViewToolBar = false;
viewer.DefaultSQLServer = folder;
WScript.Echo(state());
viewer.DatabaseType = 0;
viewer.ViewTools(true);
viewer.BuildMenu();
viewer.BuildToolbar();
viewer.BuildMisc();
viewer.BuildPopup("Font");
viewer.ListViewColSetup();
viewer.ShowKeyField(true);
viewer.SwitchLanguage();
viewer.OpenDefaultSQLServer();
viewer.LockControls();
viewer.UnlockControls();
viewer.UnselectALL();
viewer.SelectALL();
viewer.ExpandAll();
viewer.TriggerAdvancedQuery("select 1");
viewer.TriggerQuery();
viewer.DisplayNoOfRecords();
if (fails(function () { viewer.NoSuchMember(); })) WScript.Echo("no such member fails");
if (fails(function () { viewer.DatabaseType = "many"; })) WScript.Echo("wrong type fails");
if (fails(function () { viewer.BuildPopup("Font", 1); })) WScript.Echo("too many arguments fail");
if (fails(function () { viewer.BuildPopup(); })) WScript.Echo("too few arguments fail");
