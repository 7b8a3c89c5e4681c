' Query text made safe: what users type, and the dates and numbers of a program, as parts of an expression.

Module QueryText
  ' A text in which nothing means anything special.
  Function Escaped(text As String) As String
    Dim result As String = ReplaceAll(text, "\", "\\")
    For Each mark As String In Array("'", """", "*", "?")
      result = ReplaceAll(result, mark, "\" + mark)
    Next
    Return result
  End Function

  ' The attribute is this text; case and accents do not matter.
  Function IsText(attribute As String, text As String) As String
    Return attribute + " == '" + Escaped(text) + "'cd"
  End Function

  Function Contains(attribute As String, text As String) As String
    Return attribute + " == '*" + Escaped(text) + "*'cd"
  End Function

  Function BeginsWith(attribute As String, text As String) As String
    Return attribute + " == '" + Escaped(text) + "*'cd"
  End Function

  Function EndsWith(attribute As String, text As String) As String
    Return attribute + " == '*" + Escaped(text) + "'cd"
  End Function

  Function AtLeast(attribute As String, number As Int64) As String
    Return attribute + " >= " + Str(number)
  End Function

  Function AtMost(attribute As String, number As Int64) As String
    Return attribute + " <= " + Str(number)
  End Function

  ' The date is in GMT, like every date of the plugin.
  Function Since(attribute As String, moment As Date) As String
    Return attribute + " >= $time.iso(" + Replace(moment.SQLDateTime, " ", "T") + "Z)"
  End Function

  ' All parts hold. No part at all gives an expression that every file fits.
  Function All(parts() As String) As String
    Return Together(parts, " && ")
  End Function

  ' One part holds at least.
  Function Any(parts() As String) As String
    Return Together(parts, " || ")
  End Function

  Function Together(parts() As String, operator As String) As String
    If parts.UBound < 0 Then Return "kMDItemFSName == '*'"
    Return "(" + Join(parts, ")" + operator + "(") + ")"
  End Function
End Module
