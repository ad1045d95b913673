--  Answers the cases of tests/bindings/check.py with this binding.

with Ada.Exceptions;
with Ada.Strings.Fixed;
with Ada.Strings.Unbounded;
with Ada.Text_IO;
with Ada.Unchecked_Conversion;
with Corvale;
with Interfaces;

procedure Run_Cases is
   use Ada.Strings.Unbounded;
   use Ada.Text_IO;
   use Corvale;
   use type Int64;
   use type Interfaces.Unsigned_64;

   function Real_Of is new Ada.Unchecked_Conversion (Interfaces.Unsigned_64, Real64);
   function Bits_Of is new Ada.Unchecked_Conversion (Real64, Interfaces.Unsigned_64);

   Digit : constant String := "0123456789abcdef";

   function Hex (Bits : Interfaces.Unsigned_64; Width : Positive) return String is
      Rest   : Interfaces.Unsigned_64 := Bits;
      Result : String (1 .. Width);
   begin
      for C of reverse Result loop
         C := Digit (Digit'First + Natural (Rest mod 16));
         Rest := Rest / 16;
      end loop;
      return Result;
   end Hex;

   Said : Unbounded_String;
   --  What comes out of a case, each value after a blank.

   procedure Say (Text : String) is
   begin
      Append (Said, " x");
      for C of Text loop
         Append (Said, Hex (Character'Pos (C), 2));
      end loop;
   end Say;

   procedure Say (Number : Int64) is
      Image : constant String := Number'Image;  --  a blank in front, unless it is negative
   begin
      Append (Said, (if Number < 0 then ' ' & Image else Image));
   end Say;

   procedure Say (Number : Int32) is
   begin
      Say (Int64 (Number));
   end Say;

   procedure Say (Number : Real64) is
   begin
      Append (Said, " r" & Hex (Bits_Of (Number), 16));
   end Say;

   procedure Say (V : Values) is
   begin
      Say (String'(1 => V.Ch));
      Say (V.I);
      Say (V.L);
      Say (V.D);
      Say (Ada.Strings.Fixed.Trim (V.Text, Ada.Strings.Right));
      for I of V.I3 loop Say (I); end loop;
      for L of V.L3 loop Say (L); end loop;
      for D of V.D3 loop Say (D); end loop;
      for I of V.I6 loop Say (I); end loop;
      for L of V.L6 loop Say (L); end loop;
      for D of V.D6 loop Say (D); end loop;
   end Say;

   procedure Answer (Line : String) is
      From : Positive := Line'First;

      --  The next of the words.
      function Word return String is
         First : constant Positive := From;
      begin
         while From <= Line'Last and then Line (From) not in ' ' | ',' loop
            From := From + 1;
         end loop;
         From := From + 1;
         return Line (First .. From - 2);
      end Word;

      --  A value without its letter.
      function Value return String is
         Token : constant String := Word;
      begin
         return Token (Token'First + 1 .. Token'Last);
      end Value;

      function L return Int64 is (Int64'Value (Value));
      function I return Int32 is (Int32 (L));
      function D return Real64 is (Real_Of (Interfaces.Unsigned_64'Value ("16#" & Value & "#")));
      function Text return String is
         Bytes  : constant String := Value;
         Result : String (1 .. Bytes'Length / 2);
      begin
         for K in Result'Range loop
            Result (K) := Character'Val
              (Integer'Value ("16#" & Bytes (Bytes'First + 2 * K - 2 .. Bytes'First + 2 * K - 1) & "#"));
         end loop;
         return Result;
      end Text;

      --  One after the other: Ada leaves open in which order an aggregate finds its components.
      function All_Values return Values is
         V : Values;
      begin
         V.Ch := Character'Val (I);
         V.I := I;
         V.L := L;
         V.D := D;
         V.Text := Ada.Strings.Fixed.Head (Text, 512);
         for Each of V.I3 loop Each := I; end loop;
         for Each of V.L3 loop Each := L; end loop;
         for Each of V.D3 loop Each := D; end loop;
         for Each of V.I6 loop Each := I; end loop;
         for Each of V.L6 loop Each := L; end loop;
         for Each of V.D6 loop Each := D; end loop;
         return V;
      end All_Values;

      Name : constant String := Word;
      V    : Values;
   begin
      if Name = "Open" then
         Corvale.Open (if From > Line'Last then "" else Text);
      elsif Name = "CorvaleInit" then
         Init;
      elsif Name = "CorvaleGetInfo" then
         Say (Info);
      elsif Name = "GetInitDllNames" then
         Say (Init_Dll_Names);
      elsif Name = "OpenLogFile" then
         Open_Log_File (Text);
      elsif Name = "CloseLogFile" then
         Close_Log_File;
      elsif Name = "LogMessage" then
         Log_Message (Text);
      elsif Name = "GetLastErrMsg" then
         Say (Last_Err_Msg);
      elsif Name = "GetLastInfoMsg" then
         Say (Last_Info_Msg);
      elsif Name = "GetDupKeyMode" then
         Say (Dup_Key_Mode);
      elsif Name = "SetDupKeyMode" then
         Set_Dup_Key_Mode (I);
      elsif Name = "GetAllKeyMode" then
         Say (All_Key_Mode);
      elsif Name = "SetAllKeyMode" then
         Set_All_Key_Mode (I);
      elsif Name = "ResetAllKeyMode" then
         Reset_All_Key_Mode;
      elsif Name = "GetElsetKeyMode" then
         Say (Elset_Key_Mode);
      elsif Name = "SetElsetKeyMode" then
         Set_Elset_Key_Mode (I);
      elsif Name = "CorvaleLoadFile" then
         Load_File (Text);
      elsif Name = "GetMOICData" then
         for Each of MOIC_Data (Natural (I)) loop Say (Each); end loop;
      elsif Name = "TestInterface" then
         Say (Test_Interface (All_Values));
      elsif Name = "TestInterface2" then
         V := All_Values;
         Test_Interface_2 (V);
         Say (V);
      elsif Name = "TestInterface3" then
         V := (Text => (others => ' '), others => <>);
         for Each of V.I3 loop Each := I; end loop;
         for Each of V.I6 loop Each := I; end loop;
         declare
            I3 : Int32_3;
            I6 : Int32_6;
         begin
            Test_Interface_3 (V.I3, I3, V.I6, I6);
            for Each of I3 loop Say (Each); end loop;
            for Each of I6 loop Say (Each); end loop;
         end;
      else
         raise Program_Error with "no call of " & Name;
      end if;
   end Answer;

   procedure Finish (Outcome : String) is
   begin
      Put_Line (Outcome & To_String (Said));
   end Finish;

   procedure Fail (Outcome : String; Error : Ada.Exceptions.Exception_Occurrence) is
   begin
      Said := Null_Unbounded_String;
      Say (Ada.Exceptions.Exception_Message (Error));
      Finish (Outcome);
   end Fail;

begin
   while not End_Of_File loop
      begin
         Said := Null_Unbounded_String;
         Answer (Get_Line);
         Finish ("ok");
      exception
         when Error : Corvale_Error =>
            Fail ("failed", Error);
         when Text_Error =>
            Put_Line ("refused");
         when Error : Load_Error =>
            Fail ("unloaded", Error);
      end;
   end loop;
end Run_Cases;
