' A dictionary of attributes: several attributes of a picture at one stroke.

Sub Main(args() As String)
  ShowPicture(SpecialFolder.Documents.Child("holiday.png"))
End Sub

Sub ShowPicture(file As FolderItem)
  Dim item As MDItemQTX
  Try
    item = New MDItemQTX(file)
  Catch problem As NilObjectException
    ' There is no such file, or the system cannot describe it.
    Print problem.Message
    Return
  End Try

  Dim names() As String
  names.Append(MDItemQTX.kMDItemPixelWidth)
  names.Append(MDItemQTX.kMDItemPixelHeight)
  names.Append(MDItemQTX.kMDItemHasAlphaChannel)
  names.Append(MDItemQTX.kMDItemKeywords)

  Dim values As Dictionary = item.GetAttributes(names)
  If values = Nil Then
    Print "The system tells nothing about this file."
    Return
  End If

  ' What the file lacks is not in the dictionary.
  If values.HasKey(MDItemQTX.kMDItemPixelWidth) And values.HasKey(MDItemQTX.kMDItemPixelHeight) Then
    Dim width As Integer = values.Value(MDItemQTX.kMDItemPixelWidth)
    Dim height As Integer = values.Value(MDItemQTX.kMDItemPixelHeight)
    Print Str(width) + " by " + Str(height) + " pixels"
  End If

  If values.HasKey(MDItemQTX.kMDItemHasAlphaChannel) Then
    Dim transparent As Boolean = values.Value(MDItemQTX.kMDItemHasAlphaChannel)
    If transparent Then
      Print "partly transparent"
    End If
  End If

  ' An attribute with several values is an array of variants.
  If values.HasKey(MDItemQTX.kMDItemKeywords) Then
    Dim keywords() As Variant = values.Value(MDItemQTX.kMDItemKeywords)
    For Each keyword As Variant In keywords
      If keyword <> Nil Then
        Print "keyword: " + keyword.StringValue
      End If
    Next
  End If
End Sub

' It prints:
'   640 by 480 pixels
'   partly transparent
'   keyword: Cornwall
'   keyword: sea
