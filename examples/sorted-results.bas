' Sorted results: the ten largest files of a folder, then the same files by name.

Sub Main(args() As String)
  ShowLargest(SpecialFolder.Documents)
End Sub

Sub ShowLargest(folder As FolderItem)
  ' A query can sort by the attributes that are named when it is made, and by no others.
  Dim noValueLists() As String
  Dim bySize() As String = Array(MDItemQTX.kMDItemFSSize, MDItemQTX.kMDItemFSName)
  Dim query As New MDQueryQTX("kMDItemFSSize > 0", noValueLists, bySize)

  Dim folders() As FolderItem = Array(folder)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)

  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  ' Results are sorted upwards, so the largest are at the end. Walking backwards works on every system; reverse sorting
  ' works only where SetSortOptionFlagsForAttribute returns true.
  Dim last As Integer = query.ResultCount - 1
  Dim first As Integer = last - 9
  If first < 0 Then
    first = 0
  End If
  For i As Integer = last DownTo first
    Dim size As Variant = query.AttributeValueOfResultAtIndex(MDItemQTX.kMDItemFSSize, i)
    Dim name As Variant = query.AttributeValueOfResultAtIndex(MDItemQTX.kMDItemFSName, i)
    Print size.StringValue + "  " + name.StringValue
  Next

  ' In another order: false where the system cannot, or in an application that is not built.
  Dim byName() As String = Array(MDItemQTX.kMDItemFSName)
  If query.SetSortOrder(byName) Then
    For Each item As MDItemQTX In query.Results(10)
      Print item.FSName
    Next
  End If
End Sub

' It prints:
'   3439  map.png
'   1946  holiday.png
'   1790  portrait.png
'   32  minutes.txt
'   32  letter.txt
'   20  budget 10.csv
'   18  budget 9.csv
'   10  song.mp3
'   6  packing.txt
'   budget 9.csv
'   budget 10.csv
'   holiday.png
'   letter.txt
'   map.png
'   minutes.txt
'   packing.txt
'   portrait.png
'   song.mp3
