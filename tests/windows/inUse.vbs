' While a program uses the component, or has another file of the installation open, its uninstaller fails and removes
' nothing. Argument: the installation's folder.
Option Explicit
Dim Folder, Files, Held, Name

Folder = WScript.Arguments(0)
Set Files = CreateObject("Scripting.FileSystemObject")

Sub DemandRefusal(What)
    Dim Code
    Code = CreateObject("WScript.Shell").Run("""" & Folder & "\uninstall.exe"" /S _?=" & Folder, 0, True)
    If Code <> 2 Or Not Files.FileExists(Folder & "\x86\LICENSE") Then
        WScript.Echo "With " & What & " in use the uninstaller ended with " & Code
        WScript.Quit 1
    End If
End Sub

For Each Name In Array("QelPluginAnimation.chm", "qelhost.exe", "qelhostWindow.dll")
    Set Held = Files.OpenTextFile(Folder & "\x86\" & Name, 1)
    DemandRefusal Name
    Held.Close
Next
Set Held = CreateObject("QelPluginAnimation.Main")
DemandRefusal "the component"
If Held.Version <> "" Then WScript.Quit 100
