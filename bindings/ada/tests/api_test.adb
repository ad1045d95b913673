--  Walks the table of the C API and proves that this binding declares and calls all of it.

with Ada.Characters.Handling;
with Ada.Containers.Indefinite_Ordered_Sets;
with Ada.Directories;
with Ada.Environment_Variables;
with Ada.Exceptions;
with Ada.Strings.Fixed;
with Ada.Strings.Unbounded;
with Ada.Text_IO;
with Corvale;

procedure Api_Test is
   use Ada.Strings.Fixed;
   use Ada.Strings.Unbounded;
   use Ada.Text_IO;
   use Corvale;
   use type Corvale.Int32;
   use type Corvale.Int64;
   use type Corvale.Real64;

   package Names is new Ada.Containers.Indefinite_Ordered_Sets (String);
   use type Names.Set;

   Functions, Called : Names.Set;
   Checked           : Natural := 0;

   procedure Expect (Is_Right : Boolean; What : String) is
   begin
      if not Is_Right then
         raise Program_Error with What;
      end if;
   end Expect;

   procedure Call (List : String) is  --  of names, each followed by a blank
      First : Positive := List'First;
   begin
      for K in List'Range loop
         if List (K) = ' ' then
            Called.Insert (List (First .. K - 1));
            First := K + 1;
         end if;
      end loop;
   end Call;

   function Setting (Name : String) return String renames Ada.Environment_Variables.Value;

   --  All words of the declarations in lower case, one blank apart, up to the variables.
   function Declarations return String is
      Source : File_Type;
      All_Of : Unbounded_String;
   begin
      Open (Source, In_File, "corvale-api.ads");
      while not End_Of_File (Source) loop
         declare
            Line : constant String := Ada.Characters.Handling.To_Lower (Get_Line (Source)) & ' ';
         begin
            for C of Line loop
               if C not in '(' | ')' | ';' | ':' | ' ' then
                  Append (All_Of, C);
               elsif Length (All_Of) > 0 and then Element (All_Of, Length (All_Of)) /= ' ' then
                  Append (All_Of, ' ');
               end if;
            end loop;
         end;
      end loop;
      Close (Source);
      return To_String (All_Of);
   end Declarations;

   --  The next blank-delimited word of Line from From on, which is moved past it.
   function Next_Word (Line : String; From : in out Positive) return String is
      First : constant Positive := From;
      Last  : constant Natural := Index (Line & ' ', " ", From) - 1;
   begin
      From := Last + 2;
      return Line (First .. Last);
   end Next_Word;

   function Ada_Type (Kind, Width : String) return String is
      Element : constant String :=
        (if Kind = "char" then "character" else Kind) & (if Width = "count" then "_array" else "");
   begin
      return (if Width in "1" | "count" then Element else Element & "_" & Width);
   end Ada_Type;

   --  The table as the words that the declarations should be.
   function Wanted return String is
      Table  : File_Type;
      Words  : Unbounded_String;
      Result : Unbounded_String;
      procedure Finish is
      begin
         if Words /= Null_Unbounded_String then
            Append (Words, Result & "with convention => c ");
         end if;
      end Finish;
   begin
      Open (Table, In_File, Setting ("CORVALE_INTERFACE"));
      while not End_Of_File (Table) loop
         declare
            Line : constant String := Get_Line (Table);
            From : Positive := 1;
            Word : constant String := Next_Word (Line, From);
         begin
            if Word = "function" then
               Finish;
               Functions.Insert (Line (From .. Index (Line, " ", From) - 1));
               Append (Words, "type " & Next_Word (Line, From) & "_call is access ");
               Result := To_Unbounded_String
                 (if Line (From .. Line'Last) = "void" then "" else "return int32 ");
               Append (Words, (if Result = "" then "procedure " else "function "));
            elsif Word = "argument" then
               declare
                  Name  : constant String := Next_Word (Line, From);
                  Kind  : constant String := Next_Word (Line, From);
                  Width : constant String := Next_Word (Line, From);
                  Way   : constant String := Next_Word (Line, From);
               begin
                  Append (Words, Name & " " & (if Way = "inout" then "in out" else Way)
                          & " " & Ada_Type (Kind, Width) & " ");
                  Checked := Checked + 1;
               end;
            end if;
         end;
      end loop;
      Close (Table);
      Finish;
      return Ada.Characters.Handling.To_Lower (To_String (Words));
   end Wanted;

   procedure Declarations_Agree is
      Have    : constant String := Declarations;
      Table   : constant String := Wanted;
      First   : constant Positive := Index (Have, "type corvaleinit_call");
      Last    : constant Positive := Index (Have, "corvaleinit corvaleinit_call") - 1;
   begin
      Expect (Have (First .. Last) = Table, "declared: " & Have (First .. Last) & "; table: " & Table);
   end Declarations_Agree;

   function Modes return String is (Dup_Key_Mode'Image & All_Key_Mode'Image & Elset_Key_Mode'Image);

   --  That a call fails with this reason, or is refused where there is none.
   procedure Fails (Text : String; Reason : String; Run : not null access procedure (Text : String)) is
   begin
      Run (Text);
      Expect (False, "no failure of " & Text);
   exception
      when Error : Corvale_Error =>
         Expect (Reason = Ada.Exceptions.Exception_Message (Error), Ada.Exceptions.Exception_Message (Error));
      when Text_Error | Load_Error =>
         Expect (Reason = "", "refused: " & Text);
   end Fails;

   procedure Set_Dup_2 (Text : String) is
   begin
      Expect (Text = "", Text);
      Set_Dup_Key_Mode (2);
   end Set_Dup_2;

   procedure Open_Library (Text : String) is
   begin
      Corvale.Open (Text);
   end Open_Library;

   procedure Key_Modes is
      Reason : constant String := "SetDupKeyMode: invalid input value for DUPLICATION key mode.";
   begin
      Set_Dup_Key_Mode (1);
      Set_All_Key_Mode (1);
      Expect (Modes = " 1 1 0", Modes);
      Set_Elset_Key_Mode (1);
      Reset_All_Key_Mode;
      Expect (Modes = " 0 0 1", Modes);
      Set_Elset_Key_Mode (0);
      Fails ("", Reason, Set_Dup_2'Access);
      Expect (Last_Err_Msg = Reason, Last_Err_Msg);
      Call ("GetDupKeyMode SetDupKeyMode GetAllKeyMode SetAllKeyMode ResetAllKeyMode GetElsetKeyMode "
            & "SetElsetKeyMode GetLastErrMsg ");
   end Key_Modes;

   procedure Log is
      Reason : constant String := "FileOpen: Unable to open file ""no such file"" for reading.";
      File   : File_Type;
   begin
      Create (File);  --  a temporary one
      declare
         Name : constant String := Ada.Directories.Full_Name (Ada.Text_IO.Name (File));
      begin
         Close (File);
         Open_Log_File (Name);
         Log_Message ("pass 1 of 3");
         Fails ("no such file", Reason, Corvale.Load_File'Access);
         Close_Log_File;
         Expect (Last_Info_Msg = "pass 1 of 3" and Last_Err_Msg = "", Last_Info_Msg & Last_Err_Msg);
         Open (File, In_File, Name);
         Expect (Get_Line (File) = Head ("pass 1 of 3", 128), "first line of the log");
         Expect (Get_Line (File) = "Error-" & Reason and End_Of_File (File), "last line of the log");
         Delete (File);
         Fails (Ada.Directories.Containing_Directory (Name), "OpenLogFile: log file failed to open.",
                Open_Log_File'Access);
      end;
      Close_Log_File;
      Call ("OpenLogFile LogMessage GetLastInfoMsg CloseLogFile ");
   end Log;

   procedure Cards is
   begin
      Corvale.Load_File (Setting ("CORVALE_INPUT"));
      declare
         Values : constant Real64_Array := MOIC_Data (9);
      begin
         Expect (Values (1 .. 3) = (6378.135, 398600.8, 1.082_615_8E-3), "values 1 to 3");
         Expect (Values (7 .. 9) = (0.25, 0.0, 1.0E-12), "values 7 to 9");
      end;
      Expect (Modes = " 0 1 1", Modes);
      Expect (MOIC_Data (0)'Length = 0 and MOIC_Data (129) = (1 .. 129 => 0.0), "0 and 129 values");
      Call ("CorvaleLoadFile GetMOICData ");
   end Cards;

   procedure Self_Tests is
      I_Max : constant Int32 := Int32'Last;
      L_Max : constant Int64 := Int64'Last;
      I_Min : constant Int32 := Int32'First;
      L_Min : constant Int64 := Int64'First;
      Step  : constant Int64 := 1_234_567_890_123_456_789;
      Least : constant Real64 := 2.0 ** (-1074);
      Given : constant Values :=
        (Ch => 'A', I => I_Max, L => L_Max, D => 0.1, Text => Head ("  text", 512),
         I3 => (I_Max, 2, -3), L3 => (L_Max, 5, -6), D3 => (-0.0, Least, 1.0E308),
         I6 => (I_Min, 8, 9, 10, 11, I_Max), L6 => (L_Min, 14, 15, 16, 17, L_Max),
         D6 => (0.2, 0.3, 0.4, 0.5, 0.6, 0.7));
      V     : Values := Test_Interface (Given);
      D3    : Real64_3 := Given.D3;
      D6    : Real64_6 := Given.D6;
      I3    : Int32_3;
      I6    : Int32_6;
   begin
      Expect (V = Given and Real64'Copy_Sign (1.0, V.D3 (1)) = -1.0, "TestInterface");
      for D of D3 loop
         D := D + 42.0;
      end loop;
      for D of D6 loop
         D := D + 7.6;
      end loop;
      Test_Interface_2 (V);
      Expect (V = (Ch => 'Z', I => I_Min, L => L_Min + 1, D => Real64 (0.1) + 42.123456,
                   Text => Head ("It doesn't matter what your string was.", 512),
                   I3 => (I_Min, 3, -2), L3 => (L_Min + Step - 1, Step + 5, Step - 6), D3 => D3,
                   I6 => (I_Min + 1, 9, 10, 11, 12, I_Min),
                   L6 => (L_Min + 6, 20, 21, 22, 23, L_Min + 5), D6 => D6), "TestInterface2");
      Test_Interface_3 (Given.I3, I3, Given.I6, I6);
      Expect (I3 = (-4, 8, -12) and I6 = (I_Min, 40, 45, 50, 55, I_Max - 4), "TestInterface3");
      Call ("TestInterface TestInterface2 TestInterface3 ");
   end Self_Tests;

   procedure Refuses (Text : String; Is_Name : Boolean := True) is
   begin
      if Is_Name then
         Fails (Text, "", Corvale.Load_File'Access);
         Fails (Text, "", Open_Log_File'Access);
      end if;
      Fails (Text, "", Log_Message'Access);
   end Refuses;

   procedure Refusals is
   begin
      Refuses (" blank");
      Refuses ("tab" & ASCII.HT);
      Refuses (Character'Val (233) & "t" & Character'Val (233));
      Refuses ("del" & ASCII.DEL);
      Refuses ("nul" & ASCII.NUL);
      Refuses (513 * 'n');
      Refuses (129 * 'n', Is_Name => False);
      Fails ("", "FileOpen: File name is empty.", Corvale.Load_File'Access);
      Fails (512 * 'n', "FileOpen: Unable to open file """ & 97 * 'n', Corvale.Load_File'Access);
      Fails ("no-such.so", "", Open_Library'Access);
      Fails ("libc.so.6", "", Open_Library'Access);
   end Refusals;

   procedure Before_Open (Text : String) is
   begin
      Expect (Text = Info, "called without a library");
   end Before_Open;
begin
   Fails ("", "", Before_Open'Access);
   Declarations_Agree;
   Corvale.Open;
   Init;
   Expect (Head (Info, 41) = "Arvenit Corvale - Version: v9.4 - Build: ", Info);
   Expect (Init_Dll_Names = "", Init_Dll_Names);
   Call ("CorvaleInit CorvaleGetInfo GetInitDllNames ");
   Key_Modes;
   Log;
   Cards;
   Self_Tests;
   Refusals;
   Expect (Called = Functions, "not all of the table is called, or more");
   Put_Line ("Ada:" & Called.Length'Image & " of 20 functions called,"
             & Checked'Image & " arguments checked, ok");
end Api_Test;
