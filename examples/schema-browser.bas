' Schema browser: the attributes whose names hold a word, with type and title.

Sub Main(args() As String)
  Dim word As String = "Pixel"
  If args.UBound >= 0 Then word = args(0)

  Dim names() As String = MDItemQTX.AllAttributes
  names.Sort
  For Each name As String In names
    If InStr(name, word) > 0 Then
      Dim kind As String = MDItemQTX.AttributeType(name)
      If MDItemQTX.AttributeMultiValued(name) Then kind = kind + ", several"
      Print name + " (" + kind + "): " + MDItemQTX.DisplayNameForAttribute(name)
    End If
  Next
End Sub

' It prints:
'   kMDItemPixelCount (Number): Pixel count
'   kMDItemPixelHeight (Number): Pixel height
'   kMDItemPixelWidth (Number): Pixel width
