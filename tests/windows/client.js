// A late-bound client in another language. An error of the script engine itself would end it with 0, so success is 100.
var wrong = 0;

function check(what, found, expected) {
    if (found !== expected) {
        wrong += 1;
        WScript.Echo(what + " is \"" + found + "\" and not \"" + expected + "\"");
    }
}

function checkError(what, call, number, description) {
    try {
        call();
        check(what, "no error", "an error");
    } catch (error) {
        check(what + ", number", error.number & 0xFFFF, number);
        check(what + ", description", error.description, description);
    }
}

var plugin = new ActiveXObject("QelPluginAnimation.Main");
check("Version", plugin.Version, "1.0.19");
check("IsConfigurable", plugin.IsConfigurable, true);
check("CallBack 1", plugin.CallBack(1), false);
plugin.Script = plugin.InitialScript + "<pg.param name=midi value=\"Himno a la alegr\u00EDa.mid\">";
check("the tune of Script", plugin.Script.indexOf("Himno a la alegr\u00EDa.mid") > 0, true);
check("TextSettings", plugin.TextSettings.indexOf("<warning>"), 0);
checkError("a date out of range", function () { plugin.Script = "<pg.param name=to value=-1e300>"; }, 6, "Desbordamiento");

var sort = new ActiveXObject("QelPluginAnimation.classStringSort");
var values = ["\u00E9", "z", "", "Z"];
for (var i = 0; i < values.length; i += 1) {
    sort.AddValue(values[i]);
}
sort.Sort();
check("the sorted values", [sort.Value(1), sort.Value(2), sort.Value(3), sort.Value(4)].join(), ",Z,z,\u00E9");
sort.Clear();
check("ValueCount", sort.ValueCount, 0);
checkError("Value(-1)", function () { return sort.Value(-1); }, 9, "Sub\u00EDndice fuera del intervalo");

WScript.Quit(100 + wrong);
