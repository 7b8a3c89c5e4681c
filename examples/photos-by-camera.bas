' Photos by camera: the query counts them, nobody reads a file.

Sub Main(args() As String)
  Dim cameras() As String = Array(MDItemQTX.kMDItemAcquisitionModel)
  Dim query As New MDQueryQTX("kMDItemContentTypeTree == 'public.image'", cameras)
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  Dim lines() As String
  For Each camera As Variant In query.ValuesOfAttribute(MDItemQTX.kMDItemAcquisitionModel)
    If camera <> Nil Then
      Dim count As UInt32 = query.CountOfResultsWithAttributeValue(MDItemQTX.kMDItemAcquisitionModel, camera)
      lines.Append(camera.StringValue + ": " + Str(count))
    End If
  Next
  lines.Sort
  For Each line As String In lines
    Print line
  Next
  Print "pictures in all: " + Str(query.ResultCount)
End Sub

' It prints:
'   Pocket 3: 1
'   Studio 1: 1
'   pictures in all: 3
