' A late-bound client. An error of the script engine itself would end it with 0, so success is 100.
Option Explicit
Dim Wrong, Plugin, Script, Sort

Wrong = 0

Sub Check(What, Found, Expected)
    If Found <> Expected Then
        Wrong = Wrong + 1
        WScript.Echo What & " is """ & Found & """ and not """ & Expected & """"
    End If
End Sub

Sub CheckError(What, Number, Description)
    Check What & ", number", Err.Number, Number
    Check What & ", description", Err.Description, Description
    Check What & ", source", Err.Source, "QelPluginAnimation"
    Err.Clear
End Sub

Set Plugin = CreateObject("QelPluginAnimation.Main")
Check "Version", Plugin.Version, "1.0.19"
Check "Description", Plugin.Description, "Mueve objetos gr" & ChrW(225) & "ficos animados en su sitio web."
Check "RequiresPHP", Plugin.RequiresPHP, False
Check "CallBack 1", Plugin.CallBack(1), False
Script = Plugin.InitialScript & "<pg.param name=image value=""B" & ChrW(250) & "ho.gif""><pg.param name=link value="""">"
Plugin.Script = Script
Check "the image of Script", InStr(Plugin.Script, "value=""B" & ChrW(250) & "ho.gif""") > 0, True
Check "TextSettings", Left(Plugin.TextSettings, 11), "Se muestra "
Check "Output without services", Plugin.Output, "[Error de plug-in]"
Check "ErrorText", InStr(Plugin.ErrorText, "Orvenal") > 0, True

On Error Resume Next
Plugin.Script = "<pg.param name=from value=1e300>"
CheckError "a date out of range", 6, "Desbordamiento"
Plugin.CallBack 0
Check "CallBack 0 fails", Err.Number <> 0 And Err.Description <> "", True
Err.Clear
On Error GoTo 0

Set Sort = CreateObject("QelPluginAnimation.classStringSort")
Sort.AddValue "b"
Sort.AddValue "B"
Sort.AddValue "a"
Sort.Sort
Check "the sorted values", Sort.ValueCount & Sort.Value(1) & Sort.Value(2) & Sort.Value(3), "3Bab"
On Error Resume Next
Script = Sort.Value(-1)
CheckError "Value(-1)", 9, "Sub" & ChrW(237) & "ndice fuera del intervalo"
On Error GoTo 0

WScript.Quit 100 + Wrong
